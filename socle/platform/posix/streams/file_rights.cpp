#include "socle/platform/posix/streams/file_rights.h"

#include "socle/platform/posix/host/host_error.h"

namespace platform::posix {

namespace {

constexpr mode_t all_modes = 07777;

/// Read and write bits of group and others.
mode_t shared_mode(file_rights const & rights, gid_t of) {
    if (rights.listed)
        return 0;
    mode_t const group = rights.mode >> 3 & 06;
    mode_t const others = rights.mode & 06;
    return of == rights.group ? group << 3 | others : (group & others) * 011;
}

} // namespace

mode_t file_rights::stream_mode(gid_t of) const { return S_IRUSR | S_IWUSR | shared_mode(*this, of); }

mode_t file_rights::folder_mode(gid_t of) const {
    mode_t const shared = shared_mode(*this, of);
    // Whoever may read or write may enter.
    return S_IRWXU | shared | (shared & 044) >> 2 | (shared & 022) >> 1;
}

void let_follow(int file, file_rights const & rights, struct stat & now) {
    uid_t const user = geteuid();
    if (user != 0 && user != now.st_uid)
        return;
    host::at const at(file);
    uid_t const owner = user == 0 ? rights.owner : now.st_uid;
    // Who may not give it to a group goes without.
    if ((owner != now.st_uid || rights.group != now.st_gid) && host::chown(at, owner, rights.group) == 0) {
        now.st_uid = owner;
        now.st_gid = rights.group;
    }
    mode_t const mode = S_ISDIR(now.st_mode) ? rights.folder_mode(now.st_gid) : rights.stream_mode(now.st_gid);
    if ((now.st_mode & all_modes) == mode)
        return;
    if (host::chmod(at, mode) == 0)
        now.st_mode = (now.st_mode & S_IFMT) | mode;
    else
        require(errno == EROFS);
}

} // namespace platform::posix
