#include "carrier.h"

#include "common/host_text.h"

#include <socle/io/attributes.h>
#include <socle/io/directory.h>
#include <socle/io/exception.h>
#include <socle/io/file.h>
#include <socle/nio/attributes.h>
#include <socle/nio/blocks.h>
#include <socle/nio/directory.h>
#include <socle/nio/exception.h>
#include <socle/nio/filesystem_exception.h>
#include <socle/nio/fork_names.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

namespace {

[[noreturn]] void fail(narrow_string const & why) { throw nio::exception(why); }

any::path library_path(wide_string const & path) { return {any::string(path), true}; }

narrow_string shown_path(wide_string const & path) { return readable_path(platform::to_host(path)); }

void copy(extent const & from, nio::file & to, progress & shown) {
    constexpr uint64 step = 1 << 20;
    constexpr uint32 block = 65536;
    nio::file source(from.path, 1);
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

/// What was written is on the disk then.
void settle(wide_string const & path) {
    io::file file(library_path(path));
    io::fork & fork = file.data_fork();
    fork.open_rw();
    try {
        fork.flush(true);
    } catch (io::exception const &) {
        fork.close(false);
        throw;
    }
    fork.close(true);
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

void write_streams(stream_run & run, std::vector<char> block, wide_string const & to) {
    nio::file target(to, 0);
    target.open_ntfs_w();
    struct closing {
        nio::file & file;
        ~closing() { file.close_ntfs(); }
    } const at_end{target};
    for (; !block.empty(); block = run.next())
        target.write_ntfs(block.data(), static_cast<uint32>(block.size()));
}

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

uint64 seconds(nio::time const & time) { return time.file_time() / 10'000'000; }

} // namespace

struct carrier::cleaning {
    carrier const & owner;
    ~cleaning() { owner.remove_part(); }
};

carrier::volume::volume(narrow_string const & folder, fork_form form) {
    std::error_code failed;
    if (std::filesystem::is_symlink(folder, failed))
        fail("is a link: " + readable_path(folder));
    std::filesystem::create_directory(folder, failed);
    bool const streams = form == fork_form::stream;
    if (!std::filesystem::is_directory(folder, failed))
        fail("is no folder: " + readable_path(folder));
    if (platform::attach_volume('T', folder, streams ? "NTFS" : "plain") != 0)
        fail("cannot keep streams of files: " + readable_path(folder));
}

carrier::volume::~volume() { platform::detach_volume('T'); }

carrier::carrier(narrow_string const & folder, fork_form form)
    : form_(form), volume_(folder, form), part_(work(u"part")) {
    wide_string const top = root() + u'\\' + work_name();
    make_folder(top);
    // Nobody else can open for writing what is open for writing.
    lock_.path() = work(u"lock");
    lock_.create(true);
    if (!lock_.is_open())
        fail("another run is at work in " + readable_path(folder));
    remove_part();
}

carrier::~carrier() {
    remove_part();
    lock_.close();
    lock_.unlink(false);
    nio::directory(root() + u'\\' + work_name()).unlink(false);
}

bool carrier::carry(file_record const & from, wide_string const & target, progress & shown, losses & lost) {
    if (from.unclear)
        fail("is not carried");
    if (kind_of(target) == entry_kind::file) {
        auto const there = look_at_made(target);
        if (there.data.size != from.data.size || there.resource.size != from.resource.size
            || seconds(there.modified) != seconds(from.modified) || !same_finder(from, there))
            fail("is not carried: another file is at " + shown_path(target));
        shown.add(from.data.size + from.resource.size);
        return false;
    }
    check_free(from, target);
    cleaning const at_end{*this};
    make_data();
    {
        nio::file data(part_, 2);
        copy(from.data, data, shown);
    }
    settle(part_);
    // The library takes Finder information from a stream only beside a resource fork.
    if (from.resource.size > 0 || (form_ == fork_form::stream && from.has_finder())) {
        nio::file resource(part_, 0);
        make_resource(resource);
        if (from.resource.size > 0)
            copy(from.resource, resource, shown);
        resource.close();
        settle(rsrc_name(form_, part_));
    }
    copy_streams(from, part_, lost);
    apply(from, part_, from.has_finder());

    auto const made = look_at_made(part_);
    if (!same_bytes(from.data, made.data) || !same_bytes(from.resource, made.resource))
        fail("is not what was written when it is read back");
    check_kept(from, made, lost);
    place(target, true);
    return true;
}

void carrier::make_folder(wide_string const & target) {
    if (!is_there(target))
        io::directory(library_path(target)).create(false);
    if (kind_of(target) != entry_kind::folder)
        fail("is not carried: a file or a link is at " + shown_path(target));
}

void carrier::finish_folder(file_record const & from, wide_string const & target, losses & lost) {
    copy_streams(from, target, lost);
    bool const aside = from.has_finder() && form_ != fork_form::stream;
    if (aside && !same_finder(from, look_at_made(target))) {
        cleaning const at_end{*this};
        make_data();
        apply(from, part_, true);
        place(target, false);
    }
    apply(from, target, from.has_finder() && !aside);
    check_kept(from, look_at_made(target), lost);
}

wide_string carrier::work(wide_string const & leaf) const { return root() + u'\\' + work_name() + u'\\' + leaf; }

file_record carrier::look_at_made(wide_string const & path) const {
    entry found;
    found.leaf = nio::leaf(path, u'\\');
    found.kind = kind_of(path);
    auto const leaf_if = [](bool there, wide_string const & name) {
        return there && kind_of(name) == entry_kind::file ? nio::leaf(name, u'\\') : wide_string();
    };
    wide_string const rsrc = rsrc_name(form_, path), info = info_name(form_, path);
    if (form_ == fork_form::sidecar) {
        found.rsrc = leaf_if(found.kind == entry_kind::file, rsrc);
        found.info = leaf_if(is_there(info) && is_info_header(info), info);
    } else if (form_ == fork_form::apple_double) {
        found.twin = leaf_if(true, rsrc);
    }
    auto const made = look_at(nio::stem(path, u'\\'), found);
    if (made.unclear)
        fail("cannot be read back from " + shown_path(path));
    return made;
}

bool carrier::same_finder(file_record const & from, file_record const & made) const {
    auto const known = form_ == fork_form::sidecar ? sidecar_finder_size : from.finder.size();
    return std::equal(from.finder.begin(), from.finder.begin() + known, made.finder.begin());
}

/// The file must not get a fork that is there already for another.
void carrier::check_free(file_record const & from, wide_string const & target) const {
    if (is_there(target))
        fail("is not carried: a folder or a link is at " + shown_path(target));
    if (form_ == fork_form::stream)
        return;
    wide_string const rsrc = rsrc_name(form_, target), info = info_name(form_, target);
    std::set<wide_string> ours;
    if (from.resource.size > 0)
        ours.insert(rsrc);
    if (from.has_finder())
        ours.insert(info);
    auto const foreign = [&](wide_string const & path) {
        return ours.count(path) == 0 && kind_of(path) == entry_kind::file
               && (form_ == fork_form::sidecar ? path == rsrc || is_info_header(path)
                                               : read_apple_double(path).has_value());
    };
    for (auto const & path : {rsrc, info})
        if (foreign(path))
            fail("is not carried: it would get a fork that is not its own, " + shown_path(path));
}

void carrier::check_kept(file_record const & from, file_record const & made, losses & lost) const {
    constexpr uint32 carried_bits = 0x127; // read-only, hidden, system, archive, temporary
    if (!same_finder(from, made))
        fail("has other Finder information when it is read back");
    if (made.finder != from.finder)
        lost.push_back("has more Finder information than a sidecar can hold");
    if (seconds(made.created) != seconds(from.created))
        lost.push_back("was not given its date of creation");
    if (seconds(made.modified) != seconds(from.modified))
        lost.push_back("was not given its date of modification");
    if (((made.bits ^ from.bits) & carried_bits) != 0)
        lost.push_back("was not given all of its attributes");
}

void carrier::make_data() const {
    nio::file data(part_, 0);
    data.create(false);
    if (!data.is_open())
        throw nio::filesystem_exception("cannot create", part_);
}

void carrier::make_resource(nio::file & resource) const {
    if (form_ == fork_form::sidecar) {
        resource.path() = rsrc_name(form_, part_);
        resource.create(false);
    } else {
        resource.create_rsrc(form_ == fork_form::stream, false);
    }
    if (!resource.is_open())
        throw nio::filesystem_exception("cannot create", part_);
}

void carrier::copy_streams(file_record const & from, wide_string const & to, losses & lost) const {
    if (!nio::is_ntfs(from.path))
        return;
    stream_run run(from.path);
    auto block = run.next();
    if (block.empty())
        return;
    if (form_ != fork_form::stream) {
        lost.push_back("has streams that are left out");
        return;
    }
    write_streams(run, std::move(block), to);
    if (!same_streams(from.path, to))
        fail("has other streams when it is read back");
}

/// Finder information and dates first: a read-only file takes none.
void carrier::apply(file_record const & from, wide_string const & to, bool finder) const {
    if (form_ == fork_form::sidecar) {
        io::attributes attributes;
        attributes.created = any::time(from.created);
        attributes.modified = any::time(from.modified);
        attributes.mac_file = io::mac::file_attributes(from.file_info(), {});
        io::win32::attributes bits;
        bits.flags = from.bits;
        attributes.win32 = bits;
        attributes.apply(library_path(to), finder ? 1 : 0);
        return;
    }
    nio::attributes attributes;
    attributes.created = from.created;
    attributes.modified = from.modified;
    attributes.file_attributes = from.bits;
    attributes.finder_info = from.finder;
    nio::item item(to);
    attributes.apply(item, finder, form_ == fork_form::stream);
    if (from.read_only()) {
        attributes.read_only = true;
        attributes.apply(item, false, false);
    }
}

void carrier::remove_part() const {
    if (nio::exists(part_)) {
        nio::attributes writable;
        nio::item item(part_);
        writable.apply(item, false, false);
    }
    nio::file(part_, 0).unlink(false); // with its `._` sidecar
    for (auto const & name : {rsrc_name(fork_form::sidecar, part_), info_name(fork_form::sidecar, part_)})
        nio::file(name, 0).unlink(false);
}

/// Moves the part to its name, or only its sidecars to theirs: these first, so that what is there has them. A sidecar
/// that an earlier run has left there is as good.
void carrier::place(wide_string const & target, bool data) const {
    std::vector<std::pair<wide_string, wide_string>> moves;
    if (form_ != fork_form::stream) {
        for (auto const name : {rsrc_name, info_name}) {
            wide_string const from = name(form_, part_);
            if (is_there(from) && (moves.empty() || moves.back().first != from))
                moves.emplace_back(from, name(form_, target));
        }
    }
    if (data)
        moves.emplace_back(part_, target);
    std::vector<std::pair<wide_string, wide_string>> done;
    auto const put_back = [&] {
        for (auto const & [from, to] : done) {
            try {
                io::item(library_path(to)).move(library_path(from));
            } catch (un::exception const &) {
                // Another failure is already on its way up.
            }
        }
    };
    try {
        for (auto const & [from, to] : moves) {
            if (from != part_ && kind_of(to) == entry_kind::file && same_bytes(whole_file(from), whole_file(to)))
                continue;
            if (is_there(to))
                fail("is not carried: another file is at " + shown_path(to));
            io::item(library_path(from)).move(library_path(to));
            done.emplace_back(from, to);
        }
    } catch (...) {
        put_back();
        throw;
    }
}
