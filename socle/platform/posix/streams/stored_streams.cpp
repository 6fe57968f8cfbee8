#include "socle/platform/posix/streams/stored_streams.h"

#include "socle/platform/posix/host/folder_reader.h"
#include "socle/platform/posix/streams/stream_folders.h"
#include "socle/platform/stream_names.h"

#include <algorithm>
#include <new>
#include <sys/file.h>

namespace platform::posix {

namespace {

using purpose = named_streams::purpose;

/// Does `step`, and gives the code of what it throws.
template <typename Step>
system_code told(Step step) {
    try {
        step();
        return {};
    } catch (host_error const & error) {
        return code_of(error);
    }
}

/// The folder that a file claims; none if it claims none.
streams_folder look(held_place const & volume, host::at const & file, claimant const & owner) {
    streams_folder found = find_streams(volume, file, owner);
    if (found.lost)
        throw host_error(EUCLEAN);
    return found;
}

/// Whether the file's streams have to be made anew, in a folder of this user's own: copies before they are changed, by
/// the file's owner those that another user has made, and by others what does not let them in as the file does.
bool must_be_own(streams_folder const & found, file_rights const & rights, narrow_string const & stored,
                 purpose wanted) {
    bool const changes = wanted != purpose::look;
    if (found.borrowed || found.serves())
        return found.borrowed && changes;
    if (geteuid() == rights.owner)
        return true;
    if (!changes)
        return false;
    mode_t const lacking = rights.folder_mode(found.status.st_gid) & ~found.status.st_mode;
    struct stat status {};
    // All in a folder is of its owner, so nobody else makes something there.
    bool const makes =
        wanted == purpose::create && host::lstat({found.folder.get(), stored.c_str()}, &status) != 0 && errno == ENOENT;
    return lacking != 0 || makes;
}

/// The folder in which a file's streams can be looked at or changed; none, and `again`, if it changed meanwhile.
streams_folder settle(held_place const & volume, host::at const & file, claimant const & owner,
                      narrow_string const & stored, purpose wanted, bool & again) {
    bool const changes = wanted != purpose::look;
    streams_folder found = find_streams(volume, file, owner);
    again = false;
    if (!found.is_open()) {
        if (wanted != purpose::create)
            throw host_error(found.lost ? EUCLEAN : ENOENT);
        make_streams(volume, file, owner, found);
        again = true;
        return found;
    }
    if (must_be_own(found, owner.rights, stored, wanted)) {
        try {
            require(geteuid() == owner.rights.owner || host::access(file, W_OK) == 0);
            make_streams(volume, file, owner, found);
            again = true;
            return found;
        } catch (host_error const &) {
            if (changes)
                throw;
        }
    }
    let_all_follow(found, owner.rights);
    if (!changes)
        return found;
    lock(found.folder.get(), LOCK_SH);
    claimant const now = claimant_at(file);
    again = !now.has_own() || now.first() != found.claim.id;
    if (!again && found.serves())
        note_place(found, file);
    return found;
}

/// Goes to the folder that holds a stream.
void enter(streams_folder & found, narrow_string const & stored, file_rights const & rights, purpose wanted,
           stream_place & place) {
    uid_t const owner = found.status.st_uid;
    descriptor_guard folder(host::duplicate(found.folder.get(), 0));
    require(folder.get() >= 0);
    std::size_t at = 0;
    for (std::size_t end = stored.find('/'); end != narrow_string::npos; end = stored.find('/', at)) {
        narrow_string const inner = stored.substr(at, end - at);
        folder = open_inner(folder.get(), inner.c_str(), owner, rights, wanted == purpose::create);
        at = end + 1;
    }
    place.folder = std::move(folder);
    place.name = stored.substr(at);
    place.held = std::move(found.folder);
    place.rights = rights;
    place.owner = owner;
    place.borrowed = found.borrowed;
}

/// Adds the names of the streams in a folder; `begun` is the part of their stored names that the folder stands for.
void list_folder(int folder, narrow_string const & begun, std::vector<wide_string> & names) {
    folder_reader entries(folder);
    while (dirent64 const * const entry = entries.next()) {
        narrow_string stored = begun + entry->d_name;
        wide_string stream;
        if (!stored.ends_with('~')) {
            if ((entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN) && stream_name_of(stored, stream))
                names.push_back(stream);
            continue;
        }
        // No longer than the longest stored name, so that nothing put there by hand leads down without end.
        if (begun.size() >= 5 * 255)
            continue;
        stored.pop_back();
        descriptor_guard const inner = open_descriptor({folder, entry->d_name}, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (inner.get() >= 0)
            list_folder(inner.get(), stored, names);
        else if (errno != ENOENT && errno != ENOTDIR && errno != ELOOP)
            throw host_error::last();
    }
    require(entries.error());
}

} // namespace

system_code stored_streams::locate(host::at const & file, wide_string const & name, purpose wanted,
                                   stream_place & place) const {
    narrow_string const stored = stored_stream_name(name);
    return told([&] {
        // Again if the file gets another folder between two calls, but not for ever.
        for (int attempt = 0; attempt < 100; ++attempt) {
            claimant const owner = claimant_at(file);
            bool again = false;
            streams_folder found = settle(volume_, file, owner, stored, wanted, again);
            if (!again)
                return enter(found, stored, owner.rights, wanted, place);
        }
        throw host_error(EWOULDBLOCK);
    });
}

system_code stored_streams::list(host::at const & file, std::vector<wide_string> & names) const {
    names.clear();
    return told([&] {
        claimant const owner = claimant_at(file);
        streams_folder found = look(volume_, file, owner);
        if (!found.is_open())
            return;
        let_all_follow(found, owner.rights);
        list_folder(found.folder.get(), {}, names);
        std::sort(names.begin(), names.end());
    });
}

system_code stored_streams::hold(host::at const & file, descriptor_guard & held) const {
    return told([&] {
        streams_folder found = look(volume_, file, claimant_at(file));
        if (found.is_open())
            lock(found.folder.get(), LOCK_EX);
        held = std::move(found.folder);
    });
}

void stored_streams::moved(host::at const & file) const {
    try {
        claimant const owner = claimant_at(file);
        if (!owner.has_own())
            return;
        streams_folder const found = find_streams(volume_, file, owner);
        if (found.serves())
            note_place(found, file);
    } catch (host_error const &) {
        // It is found all the same.
    } catch (std::bad_alloc const &) {
    }
}

bool stored_streams::hides(std::string_view name, bool at_top) const { return at_top && name == store_name; }

system_code stored_streams::find_belongings(host::at const & file, belongings & found) const {
    return told([&] {
        claimant const owner = claimant_at(file);
        struct stat status {};
        if (owner.claims.empty())
            return;
        require(host::lstat(file, &status) == 0);
        if (S_ISLNK(status.st_mode))
            return; // to what has streams
        streams_folder streams = find_streams(volume_, file, owner);
        if (!streams.is_open() || streams.borrowed)
            return;
        found.around = descriptor_guard(host::duplicate(streams.store.descriptor(), 0));
        require(found.around.get() >= 0);
        found.folder = std::move(streams.folder);
        found.name = streams.claim.id;
    });
}

} // namespace platform::posix
