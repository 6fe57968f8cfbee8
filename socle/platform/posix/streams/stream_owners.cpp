#include "socle/platform/posix/streams/stream_owners.h"

#include "socle/platform/posix/host/hex_id.h"
#include "socle/platform/posix/streams/stream_claims.h"

namespace platform::posix {

namespace {

/// Everyone who may write some file of the volume may give it streams, so the store is open as a folder for temporary
/// files is; the folders in it admit whom their files admit.
void make_store(narrow_string const & store) {
    if (host::mkdir(store, S_IRWXU) != 0 && errno != EEXIST)
        throw host_error::last();
    narrow_string identity;
    if (read_owner_attribute(store, false, true, identity))
        return;
    if (host::chmod(store, S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO) != 0)
        throw host_error::last();
    write_owner_attribute(store, identity_of(store, false));
}

/// The bits of a folder that lets in the readers and writers of a file with the bits `file`, and always its owner.
mode_t folder_bits(mode_t file) {
    mode_t const readers = file & (S_IRUSR | S_IRGRP | S_IROTH);
    mode_t const writers = file & (S_IWUSR | S_IWGRP | S_IWOTH);
    return S_IRWXU | readers | writers | readers >> 2 | writers >> 1;
}

void make_id_folder(narrow_string const & store, narrow_string const & id, host::at const & file) {
    narrow_string const folder = streams_folder(store, id);
    bool const made = host::mkdir(folder, S_IRWXU) == 0;
    if (!made && errno != EEXIST)
        throw host_error::last();
    narrow_string const path = path_in_volume(store, file);
    narrow_string last;
    if (read_owner_attribute(folder, false, true, last)) {
        if (last != path)
            write_owner_attribute(folder, path);
        return;
    }
    // New, or left by a process that ended here.
    struct stat owner {};
    if (host::stat(file, &owner) != 0)
        throw host_error::last();
    if (owner.st_uid != geteuid() || owner.st_gid != getegid()) {
        // Only root can; for others the bits below must do.
        static_cast<void>(!host::chown(folder, owner.st_uid, owner.st_gid));
    }
    if (host::chmod(folder, folder_bits(owner.st_mode)) != 0 && made)
        throw host_error::last();
    write_owner_attribute(folder, path);
}

narrow_string find_owner(narrow_string const & store, host::at const & file, bool follow_link) {
    stream_claim const found = claim_of(file, follow_link);
    if (found.id.empty() || found.identity == identity_of(file, follow_link))
        return found.id;
    // On a copy that could not be settled, as it cannot be written, the place decides.
    narrow_string identity;
    bool const copied = read_owner_attribute(store, false, false, identity) && identity != identity_of(store, false);
    return copied && owner_was_at(store, found.id, path_in_volume(store, file)) ? found.id : narrow_string();
}

} // namespace

system_code stream_owner(narrow_string const & store, host::at const & file, bool follow_link, narrow_string & id) {
    try {
        id = find_owner(store, file, follow_link);
        return {};
    } catch (host_error const & error) {
        return code_of(error);
    }
}

system_code make_stream_owner(narrow_string const & store, host::at const & file, narrow_string & id) {
    try {
        id = find_owner(store, file, true);
        make_store(store);
        if (id.empty()) {
            store_lock const locked(store);
            id = find_owner(store, file, true);
            if (id.empty()) {
                if (host_error const error = make_hex_id(stream_id_bytes, id))
                    throw error;
                set_claim(file, id);
            }
        }
        make_id_folder(store, id, file);
        return {};
    } catch (host_error const & error) {
        return code_of(error);
    }
}

} // namespace platform::posix
