#include "socle/platform/posix/host/descriptor.h"

#include <climits>
#include <string>
#include <sys/file.h>

namespace platform::posix {

host_error held_place::check() const {
    if (path.empty())
        return host_error(); // nobody moves the root
    struct stat held {};
    struct stat there {};
    if (host::fstat(folder, &held) != 0 || host::lstat(path, &there) != 0)
        return host_error::last();
    return host_error(is_same_file(held, there) ? 0 : ENOENT);
}

bool is_same_file(struct stat const & one, struct stat const & other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool is_locked_out(int file, int kind) { return host::flock(file, kind | LOCK_NB) != 0 && errno == EWOULDBLOCK; }

host_error path_of(int file, narrow_string & path) {
    char text[PATH_MAX];
    ssize_t const size = host::readlink("/proc/self/fd/" + std::to_string(file), text, sizeof text);
    if (size < 0)
        return host_error::last();
    path.assign(text, static_cast<std::size_t>(size));
    return {};
}

host_error open_place(host::at const & file, int flags, descriptor_guard & opened, narrow_string & path) {
    opened = open_descriptor(file, O_PATH | flags);
    return opened.get() < 0 ? host_error::last() : path_of(opened.get(), path);
}

host_error real_path(host::at const & file, narrow_string & path) {
    descriptor_guard opened;
    host_error const error = open_place(file, 0, opened, path);
    return host_error::last_if(error && host::realpath(file, path) != 0);
}

} // namespace platform::posix
