#include "socle/platform/posix/host/extended_attributes.h"

#include "socle/platform/posix/host/host_calls.h"

#include <cerrno>

namespace platform::posix {

bool get_attribute(narrow_string const & path, char const * name, bool follow_link, narrow_string & value) {
    auto const get = follow_link ? host::getxattr : host::lgetxattr;
    char block[256];
    if (ssize_t const size = get(path, name, block, sizeof block); size >= 0) {
        value.assign(block, static_cast<std::size_t>(size));
        return true;
    }
    for (;;) {
        // It may grow between two calls.
        ssize_t const needed = errno == ERANGE ? get(path, name, nullptr, 0) : -1;
        if (needed < 0) {
            value.clear();
            return false;
        }
        value.resize(static_cast<std::size_t>(needed) + 1);
        ssize_t const size = get(path, name, value.data(), value.size());
        if (size >= 0) {
            value.resize(static_cast<std::size_t>(size));
            return true;
        }
    }
}

bool has_attributes(narrow_string const & path) { return host::listxattr(path, nullptr, 0) > 0; }

int set_attribute(narrow_string const & path, char const * name, narrow_string const & value) {
    auto const set = [&] { return host::setxattr(path, name, value.data(), value.size()) == 0 ? 0 : errno; };
    int error = set();
    struct stat status {};
    if (error == EACCES && host::stat(path, &status) == 0 && (status.st_mode & S_IWUSR) == 0
        && host::chmod(path, (status.st_mode & 07777) | S_IWUSR) == 0) {
        error = set();
        static_cast<void>(!host::chmod(path, status.st_mode & 07777));
    }
    return error;
}

} // namespace platform::posix
