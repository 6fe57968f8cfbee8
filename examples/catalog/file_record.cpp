#include "file_record.h"

#include "common/failure.h"
#include "common/host_text.h"

#include <socle/io/attributes.h>
#include <socle/nio/exception.h>
#include <socle/nio/file.h>
#include <socle/nio/fork_names.h>
#include <socle/nio/item.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>
#include <socle/stream/array_input.h>
#include <socle/stream/array_output.h>
#include <socle/stream/endian_input.h>
#include <socle/stream/endian_output.h>

#include <algorithm>

namespace {

finder_bytes stored(io::mac::file_info const & info) {
    finder_bytes bytes{};
    stream::array_output memory(reinterpret_cast<char *>(bytes.data()), bytes.size());
    stream::big_endian_output out(memory);
    info.write(out);
    return bytes;
}

narrow_string shown(wide_string const & leaf) { return readable_path(platform::to_host(leaf)); }

/// Takes forks one after the other, and notes where a later one says something else than the first.
class forks {
public:
    explicit forks(file_record & record) : record_(record) {}

    void resource(extent const & found, narrow_string const & where) {
        if (found.size == 0)
            return;
        if (record_.folder())
            doubt("has a resource fork, as no folder can: ", where);
        else if (record_.resource.path.empty())
            record_.resource = found;
        else if (!same_bytes(record_.resource, found))
            doubt("has another resource fork: ", where);
    }

    /// Of the bytes, the first `known` are stored there.
    void finder(finder_bytes const & found, std::size_t known, extent const & information,
                narrow_string const & where) {
        if (!record_.has_finder()) {
            record_.information = information;
            record_.finder = found;
        } else if (found != finder_bytes()
                   && !std::equal(found.begin(), found.begin() + known, record_.finder.begin())) {
            doubt("has other Finder information: ", where);
        }
    }

    void doubt(narrow_string const & words, narrow_string const & where) { record_.doubts.push_back(words + where); }

private:
    file_record & record_;
};

void take_streams(file_record const & record, forks & to, wide_string const & leaf) {
    if (!nio::is_ntfs(record.path))
        return;
    auto const rsrc = nio::ntfs_rsrc_name(record.path), info = nio::ntfs_info_name(record.path);
    if (!record.folder() && is_there(rsrc))
        to.resource(whole_file(rsrc), shown(leaf) + ":AFP_Resource");
    if (!is_there(info))
        return;
    if (auto const finder = read_finder_stream(info))
        to.finder(*finder, finder->size(), whole_file(info), shown(leaf) + ":AFP_AfpInfo");
}

void take_twin(wide_string const & path, forks & to, narrow_string const & where) {
    auto const twin = read_apple_double(path);
    if (!twin)
        return;
    to.resource(twin->resource, where);
    if (twin->finder)
        to.finder(*twin->finder, twin->finder->size(), twin->information, where);
    if (twin->more)
        to.doubt("has more than Finder information and a resource fork: ", where);
}

/// What the library says of a file of which it keeps nothing itself.
void take_status(file_record & record) {
    constexpr uint32 read_only = 1, folder = 0x10, archive = 0x20, owner_may_write = 0200;
    record.bits = record.folder() ? folder : archive;
    record.bits |= (record.status.mode & owner_may_write) == 0 ? read_only : 0;
    record.modified.set(record.status.modified, nio::time::format_file_time);
    auto const created = record.status.created != 0 ? record.status.created : record.status.modified;
    record.created.set(created, nio::time::format_file_time);
}

} // namespace

io::mac::file_info file_record::file_info() const {
    stream::array_input memory(reinterpret_cast<char const *>(finder.data()), static_cast<uint32>(finder.size()));
    stream::big_endian_input in(memory);
    io::mac::file_info result;
    result.read(in, true);
    return result;
}

file_record look_at(wide_string const & folder, entry const & found) {
    auto const beside = [&](wide_string const & leaf) { return nio::concatenate(folder, leaf, u'\\'); };
    file_record record;
    record.path = beside(found.leaf);
    record.status = found.status;
    record.more = found.has_forks();
    if (!record.folder())
        record.data = {record.path, 0, found.status.size};
    take_status(record);
    record.unclear = found.unclear;
    if (found.unclear)
        record.doubts.push_back("may have forks in a file that cannot be read");
    if (found.unclear || !record.more)
        return record;
    try {
        // With the sidecar come its dates, which are those of the file on the Macintosh.
        io::attributes attributes;
        attributes.load(any::path(any::string(record.path), true), found.info ? 3 : 0);
        record.created = attributes.created.value();
        record.modified = attributes.modified.value();
        record.bits = attributes.win32.value().flags;

        forks taken(record);
        take_streams(record, taken, found.leaf);
        if (found.rsrc)
            taken.resource(whole_file(beside(rsrc_leaf(found.leaf))), shown(rsrc_leaf(found.leaf)));
        if (attributes.mac_file.present()) {
            auto const leaf = info_leaf(found.leaf);
            taken.finder(stored(attributes.mac_file.value().info), sidecar_finder_size, whole_file(beside(leaf)),
                         shown(leaf));
        }
        if (found.twin)
            take_twin(beside(nio::ufs_name(found.leaf)), taken, shown(nio::ufs_name(found.leaf)));
    } catch (...) {
        record.unclear = true;
        record.doubts.push_back("may have forks that cannot be read: " + current_failure());
    }
    return record;
}

bool same_bytes(extent const & a, extent const & b) {
    if (a.size != b.size)
        return false;
    if (a.size == 0)
        return true;
    constexpr uint32 step = 65536;
    nio::file first(a.path, nio::file::mode_read), second(b.path, 1);
    if (!first.seek(a.offset) || !second.seek(b.offset))
        return false;
    std::vector<char> one(step), other(step);
    for (uint64 left = a.size; left > 0;) {
        auto const wanted = static_cast<uint32>(std::min<uint64>(left, step));
        if (first.read(one.data(), wanted) != wanted || second.read(other.data(), wanted) != wanted
            || !std::equal(one.begin(), one.begin() + wanted, other.begin()))
            return false;
        left -= wanted;
    }
    return true;
}
