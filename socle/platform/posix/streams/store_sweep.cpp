#include "socle/platform/posix/host/folder_reader.h"
#include "socle/platform/posix/streams/stored_streams.h"
#include "socle/platform/posix/streams/stream_folders.h"

#include <algorithm>
#include <set>
#include <sys/file.h>

namespace platform::posix {

namespace {

using ids = std::set<narrow_string>;

bool is_id(std::string_view name) {
    return name.size() == 2 * stream_id_bytes && name.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

ids folders_in(stream_store const & store) {
    descriptor_guard const folder = open_descriptor({store.descriptor(), "."}, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    require(folder.get() >= 0);
    ids found;
    folder_reader entries(folder.get());
    while (dirent64 const * const entry = entries.next())
        if (is_id(entry->d_name))
            found.insert(entry->d_name);
    require(entries.error());
    return found;
}

/// Takes those that a file claims, as its own or as a copy, out of `left`.
void drop_claimed(host::at const & file, ids & left) {
    for (stream_claim const & claim : claimant_at(file).claims)
        left.erase(claim.id);
}

/// The same for all files and folders below an open one. What cannot be looked at ends the sweep.
void drop_claimed_below(descriptor_guard && top, ids & left) {
    std::vector<narrow_string> paths = {"."}; // from the top on
    while (!paths.empty() && !left.empty()) {
        narrow_string const path = paths.back();
        paths.pop_back();
        descriptor_guard const folder = open_descriptor({top.get(), path.c_str()}, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (folder.get() < 0 && errno == ENOENT)
            continue;
        require(folder.get() >= 0);
        drop_claimed(host::at(folder.get()), left);
        folder_reader entries(folder.get());
        while (dirent64 const * const entry = entries.next()) {
            std::string_view const name = entry->d_name;
            struct stat status {};
            host::at const at(folder.get(), entry->d_name);
            if ((path == "." && name == store_name) || (host::lstat(at, &status) != 0 && errno == ENOENT))
                continue;
            if (S_ISDIR(status.st_mode))
                paths.push_back((path + '/').append(name));
            else if (S_ISREG(status.st_mode))
                drop_claimed(at, left);
        }
        require(entries.error());
    }
}

/// Removes the folder of an id, unless somebody is making it now, or the file that it was made for claims it after all.
void remove_left(stream_store const & store, narrow_string const & id) {
    descriptor_guard const folder =
        open_descriptor({store.descriptor(), id.c_str()}, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (folder.get() < 0 && errno == ENOENT)
        return;
    require(folder.get() >= 0);
    if (is_locked_out(folder.get(), LOCK_EX))
        return;
    ids left = {id};
    try {
        if (stream_note const note = note_of(folder.get()); !note.path.empty())
            drop_claimed(store.in_volume(note.path), left);
    } catch (host_error const & error) {
        if (error != ENOENT && error != ENOTDIR)
            throw;
    }
    if (!left.empty())
        require(remove_streams(store.descriptor(), id, folder.get()));
}

} // namespace

system_code stored_streams::sweep() const {
    try {
        stream_store const store = stream_store::open(volume_);
        if (!store.is_open())
            return {};
        ids left = folders_in(store);
        // Twice, as a file may move past one walk.
        for (int walk = 0; walk < 2 && !left.empty(); ++walk)
            drop_claimed_below(open_descriptor(store.in_volume("."), O_PATH | O_DIRECTORY), left);
        for (narrow_string const & id : left)
            remove_left(store, id);
        return {};
    } catch (host_error const & error) {
        return code_of(error);
    }
}

} // namespace platform::posix
