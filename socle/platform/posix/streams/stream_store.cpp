#include "socle/platform/posix/streams/stream_store.h"

#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/folder_reader.h"
#include "socle/platform/posix/streams/stream_claims.h"

namespace platform::posix {

namespace {

constexpr char const * store_leaf = store_name.data();
constexpr mode_t store_mode = S_ISVTX | S_IRWXU | S_IWGRP | S_IXGRP | S_IWOTH | S_IXOTH;
constexpr char const * store_mark = "store";

descriptor_guard open_folder(host::at const & folder, int flags) {
    return open_descriptor(folder, flags | O_DIRECTORY | O_NOFOLLOW);
}

struct statx status_of(int file) {
    struct statx status {};
    require(host::statx(host::at(file), 0, STATX_BASIC_STATS | STATX_BTIME, &status) == 0);
    return status;
}

bool on_one_system(struct statx const & top, struct statx const & store) {
    return top.stx_dev_major == store.stx_dev_major && top.stx_dev_minor == store.stx_dev_minor
           && (store.stx_attributes & STATX_ATTR_MOUNT_ROOT) == 0;
}

/// Whether nobody could have put this in the place of a store who could not as well do so at any other time.
bool is_owned_well(struct statx const & top, struct statx const & store) {
    bool const whoever = (top.stx_mode & S_ISVTX) == 0;
    return whoever || store.stx_uid == 0 || store.stx_uid == top.stx_uid || store.stx_uid == geteuid();
}

bool is_marked(int store) {
    narrow_string text;
    require(get_record_text(host::at(store), note_attribute, text));
    return text == store_mark;
}

/// Whether a process has ended while it made this one.
bool is_begun(int top, mode_t mode) {
    if ((mode & 07777) != S_IRWXU)
        return false;
    descriptor_guard const folder = open_folder({top, store_leaf}, O_RDONLY);
    require_open(folder);
    folder_reader entries(folder.get());
    bool const empty = entries.next() == nullptr;
    require(entries.error());
    return empty;
}

void finish(int store) {
    require(set_attribute(host::at(store), note_attribute, store_mark));
    require(host::chmod(host::at(store), store_mode) == 0);
}

} // namespace

void require_open(descriptor_guard const & folder) {
    if (folder.get() < 0)
        throw host_error(errno == ENOTDIR || errno == ELOOP ? EACCES : errno);
}

stream_store stream_store::open(held_place const & volume) {
    stream_store store;
    store.volume_ = volume;
    if (host_error const error = volume.check())
        throw error == ENOENT || error == ENOTDIR ? host_error(EUCLEAN) : error;
    store.folder_ = open_folder({volume.folder, store_leaf}, O_PATH);
    if (!store.is_open() && errno == ENOENT)
        return store;
    require_open(store.folder_);
    struct statx const top = status_of(volume.folder);
    struct statx const status = status_of(store.folder_.get());
    bool const root = geteuid() == 0;
    bool const taken_over = !is_owned_well(top, status);
    if (!on_one_system(top, status) || (taken_over && !root))
        throw host_error(EACCES);
    if (taken_over || (status.stx_mode & 07777) != store_mode) {
        // Somebody may have changed the modes of the whole volume.
        bool const ours = root || geteuid() == status.stx_uid;
        // Asked first: what is in a store is made when it is marked.
        bool const begun = ours && is_begun(volume.folder, status.stx_mode);
        host::at const folder(store.folder_.get());
        if (!is_marked(store.folder_.get())) {
            if (!begun)
                throw host_error(EACCES);
            store.folder_ = descriptor_guard();
        } else {
            require(!taken_over || host::chown(folder, 0, 0) == 0);
            require(!ours || host::chmod(folder, store_mode) == 0 || errno == EROFS);
        }
    }
    if (store.is_open())
        store.identity_ = identity_of(host::at(store.folder_.get()));
    return store;
}

stream_store stream_store::make(held_place const & volume) {
    stream_store store = open(volume);
    if (store.is_open())
        return store;
    host::at const place(volume.folder, store_leaf);
    require(host::mkdir(place, S_IRWXU) == 0 || errno == EEXIST);
    store = open(volume);
    if (store.is_open())
        return store;
    descriptor_guard const made = open_folder(place, O_RDONLY);
    require_open(made);
    finish(made.get());
    return open(volume);
}

} // namespace platform::posix
