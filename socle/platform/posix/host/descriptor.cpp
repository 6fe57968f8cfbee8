#include "socle/platform/posix/host/descriptor.h"

#include <climits>
#include <string>

namespace platform::posix {

host_error held_place::check() const {
    if (path.empty())
        return host_error(); // nobody moves the root
    struct stat held {};
    struct stat there {};
    if (host::fstat(folder, &held) != 0 || host::lstat(path, &there) != 0)
        return host_error::last();
    return host_error(held.st_dev == there.st_dev && held.st_ino == there.st_ino ? 0 : ENOENT);
}

host_error path_of(int file, narrow_string & path) {
    char text[PATH_MAX];
    ssize_t const size = host::readlink("/proc/self/fd/" + std::to_string(file), text, sizeof text);
    if (size < 0)
        return host_error::last();
    path.assign(text, static_cast<std::size_t>(size));
    return {};
}

host_error real_path(host::at const & file, narrow_string & path) {
    descriptor_guard const opened = open_descriptor(file, O_PATH);
    host_error const error = opened.get() < 0 ? host_error::last() : path_of(opened.get(), path);
    return host_error::last_if(error && host::realpath(file, path) != 0);
}

} // namespace platform::posix
