#include "platform/posix/extended_attributes.h"

#include <cerrno>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace platform::posix {

bool get_attribute(narrow_string const & path, char const * name, bool follow_link, narrow_string & value) {
    auto const get = follow_link ? getxattr : lgetxattr;
    value.resize(256);
    for (;;) {
        ssize_t const size = get(path.c_str(), name, value.data(), value.size());
        if (size >= 0) {
            value.resize(static_cast<std::size_t>(size));
            return true;
        }
        // It may grow between two calls.
        ssize_t const needed = errno == ERANGE ? get(path.c_str(), name, nullptr, 0) : -1;
        if (needed < 0) {
            value.clear();
            return false;
        }
        value.resize(static_cast<std::size_t>(needed) + 1);
    }
}

int set_attribute(narrow_string const & path, char const * name, narrow_string const & value) {
    auto const set = [&] { return setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0 ? 0 : errno; };
    int error = set();
    struct stat status {};
    if (error == EACCES && stat(path.c_str(), &status) == 0 && (status.st_mode & S_IWUSR) == 0
        && chmod(path.c_str(), (status.st_mode & 07777) | S_IWUSR) == 0) {
        error = set();
        static_cast<void>(!chmod(path.c_str(), status.st_mode & 07777));
    }
    return error;
}

} // namespace platform::posix
