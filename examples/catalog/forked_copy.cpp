#include "forked_copy.h"

#include <socle/io/attributes.h>
#include <socle/nio/attributes.h>
#include <socle/nio/blocks.h>
#include <socle/nio/exception.h>
#include <socle/nio/file.h>
#include <socle/nio/filesystem_exception.h>
#include <socle/nio/fork_names.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>

namespace {

[[noreturn]] void fail(narrow_string const & why) { throw nio::exception(why); }

/// Copies from where `from` begins to where `to` stands.
void copy(extent const & from, nio::file & to, progress & shown) {
    constexpr uint64 step = 1 << 20;
    constexpr uint32 block = 262144;
    nio::file source(from.path, nio::file::mode_read);
    if (!source.seek(from.offset))
        fail("cannot be read from where its fork begins");
    for (uint64 left = from.size; left > 0;) {
        uint64 const wanted = std::min(left, step);
        if (nio::copy(source, to, wanted, block) != wanted)
            fail("ended before all of it was read");
        left -= wanted;
        shown.add(wanted);
    }
}

void open_new(nio::file & file) {
    if (!file.is_open())
        throw nio::filesystem_exception("cannot make a copy", file.path());
}

/// The run of bytes that stands for all other streams of a file, read from its start.
class stream_run {
public:
    explicit stream_run(wide_string const & path) : file_(path, 0) { file_.open_ntfs(); }
    stream_run(stream_run const &) = delete;
    stream_run & operator=(stream_run const &) = delete;
    ~stream_run() { file_.close_ntfs(); }

    /// The next bytes; none at the end.
    std::vector<char> next() {
        std::vector<char> block(65536);
        block.resize(file_.read_ntfs(block.data(), static_cast<uint32>(block.size())));
        return block;
    }

private:
    nio::file file_;
};

bool same_streams(wide_string const & a, wide_string const & b) {
    stream_run first(a), second(b);
    for (;;) {
        auto const block = first.next();
        if (second.next() != block)
            return false;
        if (block.empty())
            return true;
    }
}

std::vector<host::stretch> stretches(file_record const & file) {
    return host::stretches_of(platform::to_host(file.path), file.status);
}

/// Where neither has data, both have zeros.
bool same_data(file_record const & a, file_record const & b) {
    if (a.data.size != b.data.size)
        return false;
    for (auto const & side : {stretches(a), stretches(b)}) {
        for (auto const & [begin, end] : side) {
            uint64 const size = std::min(end, a.data.size) - begin;
            if (!same_bytes({a.path, begin, size}, {b.path, begin, size}))
                return false;
        }
        if (side.size() == 1 && side[0].begin == 0 && side[0].end >= a.data.size)
            break; // that was all
    }
    return true;
}

} // namespace

void forked_copy::make(file_record const & from, progress & shown) const {
    make_data(from, shown);
    // The library takes Finder information from a stream only beside a resource fork.
    if (from.resource.size > 0 || (form_ == fork_form::stream && from.has_finder()))
        make_resource(from, shown);
    if (form_ == fork_form::stream && has_streams(from))
        copy_streams(from, path_);
    apply_attributes(form_, from, path_, from.has_finder());
    if (form_ == fork_form::apple_double && (from.resource.size > 0 || from.has_finder()))
        name_resource_fork(nio::ufs_name(path_));
}

void forked_copy::make_beside(file_record const & from) const {
    nio::file owner(path_, nio::file::mode_new);
    open_new(owner);
    owner.close();
    apply_attributes(form_, from, path_, true);
    if (form_ == fork_form::apple_double)
        name_resource_fork(nio::ufs_name(path_));
}

void forked_copy::remove() const {
    if (nio::exists(path_)) {
        nio::attributes writable;
        nio::item item(path_);
        writable.apply(item, false, false);
    }
    nio::file(path_, nio::file::mode_closed).unlink(false); // with its `._` sidecar
    for (auto const & name : {rsrc_name(fork_form::sidecar, path_), info_name(fork_form::sidecar, path_)})
        nio::file(name, nio::file::mode_closed).unlink(false);
}

void forked_copy::make_data(file_record const & from, progress & shown) const {
    nio::file data(path_, nio::file::mode_new);
    open_new(data);
    for (auto const & [begin, end] : stretches(from)) {
        data.seek(begin);
        copy({from.path, begin, std::min(end, from.data.size) - begin}, data, shown);
    }
    if (data.tell() < from.data.size && !data.resize(from.data.size))
        throw nio::filesystem_exception("cannot write", path_);
}

void forked_copy::make_resource(file_record const & from, progress & shown) const {
    nio::file resource(path_, nio::file::mode_closed);
    if (form_ == fork_form::sidecar) {
        resource.path() = rsrc_name(form_, path_);
        resource.create(false);
    } else {
        resource.create_rsrc(form_ == fork_form::stream, false);
    }
    open_new(resource);
    if (from.resource.size > 0)
        copy(from.resource, resource, shown);
}

/// Finder information and dates first: a read-only file takes none.
void apply_attributes(fork_form form, file_record const & from, wide_string const & to, bool finder) {
    if (form == fork_form::sidecar) {
        io::attributes attributes;
        attributes.created = any::time(from.created);
        attributes.modified = any::time(from.modified);
        attributes.mac_file = io::mac::file_attributes(from.file_info(), {});
        io::win32::attributes bits;
        bits.flags = from.bits;
        attributes.win32 = bits;
        attributes.apply({any::string(to), true}, finder ? 1 : 0);
        return;
    }
    nio::attributes attributes;
    attributes.created = from.created;
    attributes.modified = from.modified;
    attributes.file_attributes = from.bits;
    attributes.finder_info = from.finder;
    nio::item item(to);
    attributes.apply(item, finder, form == fork_form::stream);
    if (from.read_only()) {
        attributes.read_only = true;
        attributes.apply(item, false, false);
    }
}

bool has_streams(file_record const & file) {
    return file.more && nio::is_ntfs(file.path) && !stream_run(file.path).next().empty();
}

void copy_streams(file_record const & from, wide_string const & to) {
    stream_run run(from.path);
    nio::file target(to, nio::file::mode_closed);
    target.open_ntfs_w();
    struct closing {
        nio::file & file;
        ~closing() { file.close_ntfs(); }
    } const at_end{target};
    for (auto block = run.next(); !block.empty(); block = run.next())
        target.write_ntfs(block.data(), static_cast<uint32>(block.size()));
}

file_record look_at_made(fork_form form, wide_string const & path) {
    return look_at_made(form, path, host::status_of(platform::to_host(path)), true);
}

file_record look_at_made(fork_form form, wide_string const & path, host::status const & status, bool forks) {
    auto const beside = [](wide_string const & name) {
        return host::kind_of(platform::to_host(name)) == host::kind::file;
    };
    entry found;
    found.leaf = nio::leaf(path, u'\\');
    found.status = status;
    found.more = true;
    wide_string const info = info_name(form, path);
    if (form == fork_form::sidecar && forks) {
        found.rsrc = found.file() && beside(rsrc_name(form, path));
        found.info = beside(info) && is_info_header(info);
    } else if (form == fork_form::apple_double && forks) {
        found.twin = beside(info);
    }
    auto const made = look_at(nio::stem(path, u'\\'), found);
    if (made.unclear)
        fail("is not carried, as what is there cannot be read back");
    return made;
}

bool same_contents(fork_form form, file_record const & from, file_record const & made) {
    return same_data(from, made) && same_bytes(from.resource, made.resource) && same_finder(form, from, made)
           && (form != fork_form::stream || !from.more || !nio::is_ntfs(from.path)
               || same_streams(from.path, made.path));
}

bool same_finder(fork_form form, file_record const & from, file_record const & made) {
    auto const known = form == fork_form::sidecar ? sidecar_finder_size : from.finder.size();
    return std::equal(from.finder.begin(), from.finder.begin() + known, made.finder.begin());
}
