#include "carrier.h"

#include "losses.h"

#include "common/host_text.h"

#include <socle/io/item.h>
#include <socle/nio/exception.h>
#include <socle/nio/fork_names.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>
#include <socle/un/exception.h>

#include <algorithm>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(narrow_string const & why) { throw nio::exception(why); }

any::path library_path(wide_string const & path) { return {any::string(path), true}; }

/// What a batch comes to at most: a crash costs the work on one, and each of its folders is held.
constexpr std::size_t most_files = 4096, most_folders = 400;
constexpr uint64 most_bytes = 256 << 20;

std::optional<host::folder> top_folder(narrow_string const & path, bool dry) {
    auto const there = host::kind_of(path);
    if (there == host::kind::link)
        fail("the target is a link: " + readable_path(path));
    if (there == host::kind::nothing && !dry)
        fs::create_directory(host::path_of(path));
    else if (there == host::kind::nothing)
        return {};
    else if (there != host::kind::folder)
        fail("the target is no folder: " + readable_path(path));
    return host::folder(path, false);
}

uint64 seconds(uint64 file_time) { return file_time / 10'000'000; }

} // namespace

carrier::volume::volume(target_folder const & top, bool attach) : attached(attach) {
    if (attach && platform::attach_volume('T', top.held()->path(), "NTFS") != 0)
        fail("cannot keep streams of files: " + top.typed());
}

carrier::volume::~volume() {
    if (attached)
        platform::detach_volume('T');
}

carrier::carrier(narrow_string const & folder, carrying const & how, report & report)
    : how_(how), report_(report),
      top_(std::make_shared<target_folder>(top_folder(folder, how.dry), readable_path(folder))),
      volume_(*top_, in_streams() && (!how.dry || top_->listed(".socle_streams"))) {
    if (!how_.dry)
        work_.emplace(*top_, how_.form);
}

bool carrier::is_reserved(wide_string const & leaf) {
    static wide_string const streams = platform::from_host(".socle_streams");
    return work_folder::is_named(leaf) || leaf == streams;
}

void carrier::carry(file_record const & from, target_pointer const & folder, wide_string const & leaf) {
    if (from.unclear)
        fail("is not carried, as its forks cannot be read");
    if (how_.hard_links && from.status.names > 1 && link(from, folder, leaf))
        return;
    auto const found = find(from, *folder, leaf);
    if (found == finding::same) {
        ++report_.there_already;
        report_.bar().add(from.bytes());
        return;
    }
    if (how_.dry) {
        ++(found == finding::older ? report_.replaced : report_.carried);
        return;
    }
    auto const path = work_->next_part();
    host::status status;
    try {
        status = make(from, path);
    } catch (...) {
        forked_copy(how_.form, path).remove();
        throw;
    }
    waiting_.push_back({from, folder, leaf, path, status, found == finding::older, nullptr});
    waiting_bytes_ += from.bytes();
    if (waiting_.size() >= most_files || waiting_bytes_ >= most_bytes)
        flush();
}

carrier::finding carrier::find(file_record const & from, target_folder & folder, wide_string const & leaf) {
    auto const name = platform::to_host(leaf);
    auto const typed = [&] { return folder.typed(leaf); };
    auto const there = folder.look(name);
    if (there.kind == host::kind::nothing) {
        check_free(from, folder, leaf);
        return finding::free;
    }
    if (there.kind != host::kind::file)
        fail("is not carried, as a folder or a link is there: " + typed());
    // A host may take two names for the same.
    if (!folder.claim(there) && (there.names == 1 || !folder.listed(name)))
        fail("is not carried, as this run has another file there: " + typed());

    // The host's date tells of changes that nobody has put down in a sidecar.
    auto const has = [&](wide_string const & fork) {
        return folder.look(platform::to_host(fork)).kind != host::kind::nothing;
    };
    bool const forks =
        !in_streams() && folder.lists_forks() && (has(rsrc_name(how_.form, leaf)) || has(info_name(how_.form, leaf)));
    auto const made = look_at_made(how_.form, folder.path(leaf), there, forks);
    auto const date = seconds(there.modified), wanted = seconds(from.modified.file_time());
    bool const same = made.data.size == from.data.size && made.resource.size == from.resource.size && date == wanted
                      && same_finder(how_.form, from, made);
    if (same && (!how_.verify || same_contents(how_.form, from, made))) {
        tell_losses(from, made, {}, how_, report_);
        return finding::same;
    }
    if (!how_.update)
        fail((same ? "is not carried, as a file with other bytes is there, which --update replaces: "
                   : "is not carried, as another file is there, which --update replaces: ")
             + typed());
    if (date > wanted)
        fail("is not carried, as a newer file is there: " + typed());
    return finding::older;
}

/// The file must not get a fork that is there already for another.
void carrier::check_free(file_record const & from, target_folder const & folder, wide_string const & leaf) const {
    if (in_streams() || !folder.held())
        return;
    auto const ours = sidecars_of(from, leaf);
    for (auto const & name : {rsrc_name(how_.form, leaf), info_name(how_.form, leaf)}) {
        bool const own = std::find(ours.begin(), ours.end(), name) != ours.end();
        if (!own && folder.look(platform::to_host(name)).kind == host::kind::file && is_fork(folder.path(name)))
            fail("is not carried, as it would get a fork that is not its own: " + folder.typed(name));
    }
}

/// Whether a file of such a name is one.
bool carrier::is_fork(wide_string const & path) const {
    if (how_.form == fork_form::apple_double)
        return read_apple_double(path).has_value();
    return path.ends_with(rsrc_leaf(u"")) || is_info_header(path);
}

/// Makes the file another name of one that was carried before. False if it is to be carried by itself.
bool carrier::link(file_record const & from, target_pointer const & folder, wide_string const & leaf) {
    auto const place = first_names_.try_emplace({from.status.device, from.status.number}, folder, leaf);
    if (place.second)
        return false;
    flush(); // brings the first name into place
    auto const first_folder = place.first->second.first;
    auto const first_leaf = place.first->second.second;
    auto const first = first_folder->look(platform::to_host(first_leaf));
    auto const there = folder->look(platform::to_host(leaf));
    if (first.kind != host::kind::file && !how_.dry) {
        place.first->second = {folder, leaf};
        return false;
    }
    bool const same = there.kind == host::kind::file && there.same_file(first);
    if (there.kind != host::kind::nothing && !same)
        return false;
    auto const link_name = [&](wide_string const & now, wide_string const & name) {
        if (folder->look(platform::to_host(name)).kind == host::kind::nothing)
            fs::create_hard_link(host::path_of(first_folder->held()->path(platform::to_host(now))),
                                 host::path_of(folder->held()->path(platform::to_host(name))));
    };
    if (!same && !how_.dry) {
        check_free(from, *folder, leaf);
        auto const now = sidecars_of(from, first_leaf), names = sidecars_of(from, leaf);
        for (std::size_t i = 0; i < names.size(); ++i)
            link_name(now[i], names[i]);
        link_name(first_leaf, leaf);
    }
    report_.bar().add(from.bytes());
    ++(same ? report_.there_already : report_.carried);
    return true;
}

host::status carrier::make(file_record const & from, wide_string const & path) {
    forked_copy const made(how_.form, path);
    auto const source = platform::to_host(from.path), host_path = platform::to_host(path);
    made.make(from, report_.bar());
    auto const refused = host::give_belongings(source, from.status, host_path, how_.keep);
    auto const sidecars = sidecars_of(from, path);
    for (auto const & name : sidecars)
        host::give_mode(platform::to_host(name), from.status.mode & 0666);
    auto const now = host::status_of(source);
    if (now.modified != from.status.modified || now.size != from.status.size)
        fail("is not carried, as it changed while it was read");
    auto const status = host::status_of(host_path);
    tell_losses(from, look_at_made(how_.form, path, status, !sidecars.empty()), refused, how_, report_);
    return status;
}

target_pointer carrier::enter(target_pointer const & folder, wide_string const & leaf) {
    auto const name = platform::to_host(leaf);
    auto const typed = folder->typed(leaf);
    bool const made = !how_.dry && folder->held()->make(name);
    auto const there = folder->look(name).kind;
    if (there == host::kind::nothing)
        return std::make_shared<target_folder>(std::nullopt, typed);
    if (there != host::kind::folder)
        fail("is not carried, as a file or a link is there: " + typed);
    auto held = folder->held()->inner(name);
    auto const status = held.status();
    if (!entered_.emplace(status.device, status.number).second)
        fail("is not carried, as this run has another folder there: " + typed);
    constexpr uint32 to_work_in = 0700;
    if (!made && !how_.dry && (status.mode & to_work_in) != to_work_in)
        host::give_mode(held.path(), status.mode | to_work_in);
    return std::make_shared<target_folder>(std::move(held), typed);
}

void carrier::finish(file_record const & from, target_pointer const & around, wide_string const & leaf,
                     target_pointer const & made) {
    if (how_.dry)
        return;
    waiting_.push_back({from, around, leaf, {}, {}, how_.update, made});
    if (++waiting_folders_ >= most_folders)
        flush();
}

void carrier::finish_top(file_record const & from) {
    if (how_.dry)
        return;
    flush();
    work_.reset();
    if (from.has_finder() && !in_streams())
        report_.complain(from.path, "has Finder information, for which there is no place in the target");
    auto const refused = apply_to_folder(from, *top_, u"T:\\");
    top_->held()->sync();
    entry made;
    made.status = top_->held()->status();
    made.more = host::has_more(top_->held()->path() + "/.");
    tell_losses(from, look_at(top_->path(u""), made), refused, how_, report_);
}

void carrier::flush() {
    auto const batch = std::move(waiting_);
    waiting_.clear();
    waiting_bytes_ = waiting_folders_ = 0;
    narrow_string failure;
    try {
        if (std::any_of(batch.begin(), batch.end(), [](waiting const & each) { return !each.made; }))
            work_->sync();
    } catch (...) {
        failure = current_failure();
    }
    for (auto const & each : batch) {
        report_.attempt(each.from.path, [&] {
            if (each.made)
                finish_folder(each);
            else if (failure.empty())
                place(each);
            else
                fail("is not carried: " + failure);
        });
    }
}

/// Sidecars first, so that what is there has them.
void carrier::place(waiting const & file) {
    forked_copy const made(how_.form, file.part);
    std::vector<wide_string> placed;
    try {
        if (how_.verify && !same_contents(how_.form, file.from, look_at_made(how_.form, file.part)))
            fail("is not what was written when it is read back");
        place_sidecars(file, placed);
        move(file.part, *file.folder, file.leaf, file.replaces);
    } catch (...) {
        made.remove();
        for (auto const & leaf : placed)
            fs::remove(host::path_of(file.folder->held()->path(platform::to_host(leaf))));
        throw;
    }
    file.folder->claim(file.status);
    ++(file.replaces ? report_.replaced : report_.carried);
}

/// Notes those that are to go again if the file cannot be placed.
void carrier::place_sidecars(waiting const & file, std::vector<wide_string> & placed) const {
    auto & folder = *file.folder;
    auto const from = sidecars_of(file.from, file.part), to = sidecars_of(file.from, file.leaf);
    for (std::size_t i = 0; i < to.size(); ++i) {
        // One that an earlier run has left there is as good.
        if (folder.look(platform::to_host(to[i])).kind == host::kind::file
            && same_bytes(whole_file(from[i]), whole_file(folder.path(to[i])))) {
            fs::remove(host::path_of(platform::to_host(from[i])));
            continue;
        }
        move(from[i], folder, to[i], file.replaces);
        if (!file.replaces)
            placed.push_back(to[i]);
    }
    if (!file.replaces || in_streams())
        return;
    for (auto const & name : {rsrc_name(how_.form, file.leaf), info_name(how_.form, file.leaf)}) {
        bool const ours = std::find(to.begin(), to.end(), name) != to.end();
        if (!ours && folder.look(platform::to_host(name)).kind == host::kind::file && is_fork(folder.path(name)))
            fs::remove(host::path_of(folder.held()->path(platform::to_host(name))));
    }
}

void carrier::move(wide_string const & from, target_folder & folder, wide_string const & leaf, bool replace) const {
    auto const name = platform::to_host(leaf);
    if (replace)
        fs::rename(host::path_of(platform::to_host(from)), host::path_of(folder.held()->path(name)));
    else if (folder.look(name).kind != host::kind::nothing)
        fail("is not carried, as another file is there: " + folder.typed(leaf));
    else if (in_streams())
        io::item(library_path(from)).move(library_path(folder.path(leaf)));
    else
        work_->move(from, folder, name);
}

void carrier::finish_folder(waiting const & folder) {
    auto const & from = folder.from;
    auto const path = folder.folder->path(folder.leaf);
    if (from.has_finder() && !in_streams() && !same_finder(how_.form, from, look_at_made(how_.form, path)))
        place_beside(folder);
    auto const refused = apply_to_folder(from, *folder.made, path);
    tell_losses(from, look_at_made(how_.form, path), refused, how_, report_);
}

void carrier::place_beside(waiting const & folder) {
    forked_copy const beside(how_.form, work_->next_part());
    try {
        beside.make_beside(folder.from);
        auto const info = info_name(how_.form, beside.path());
        host::give_mode(platform::to_host(info), folder.from.status.mode & 0666);
        work_->sync();
        move(info, *folder.folder, info_name(how_.form, folder.leaf), folder.replaces);
    } catch (...) {
        beside.remove();
        throw;
    }
    beside.remove();
}

/// Its streams go by the path that `path` gives it, on the volume that has them; what is no such volume gets none.
host::refusals carrier::apply_to_folder(file_record const & from, target_folder const & made,
                                        wide_string const & path) const {
    if (in_streams() && has_streams(from))
        copy_streams(from, path);
    if (in_streams() && from.has_finder())
        write_finder_stream(nio::ntfs_info_name(path), from.finder);
    apply_attributes(how_.form, from, made.path(u""), false);
    return host::give_belongings(platform::to_host(from.path), from.status, made.held()->path(), how_.keep);
}

std::vector<wide_string> carrier::sidecars_of(file_record const & from, wide_string const & name) const {
    std::vector<wide_string> result;
    if (from.resource.size > 0 && !in_streams())
        result.push_back(rsrc_name(how_.form, name));
    if (from.has_finder() && !in_streams() && (result.empty() || how_.form == fork_form::sidecar))
        result.push_back(info_name(how_.form, name));
    return result;
}
