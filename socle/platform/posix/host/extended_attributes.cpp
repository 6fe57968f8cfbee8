#include "socle/platform/posix/host/extended_attributes.h"

namespace platform::posix {

host_error get_attribute(host::at const & file, char const * name, bool follow_link, narrow_string & value) {
    auto const get = follow_link ? host::getxattr : host::lgetxattr;
    char block[256];
    ssize_t size = get(file, name, block, sizeof block);
    if (size >= 0) {
        value.assign(block, static_cast<std::size_t>(size));
        return {};
    }
    value.clear();
    // It may grow between two calls.
    while (size < 0 && errno == ERANGE) {
        if (size = get(file, name, nullptr, 0); size < 0)
            break;
        value.resize(static_cast<std::size_t>(size) + 1);
        size = get(file, name, value.data(), value.size());
    }
    host_error const error = host_error::last_if(size < 0);
    value.resize(error ? 0 : static_cast<std::size_t>(size));
    return error;
}

bool has_attributes(host::at const & file) { return host::listxattr(file, nullptr, 0) > 0; }

host_error set_attribute(host::at const & file, char const * name, narrow_string const & value) {
    auto const set = [&] { return host_error::last_if(host::setxattr(file, name, value.data(), value.size()) != 0); };
    host_error error = set();
    struct stat status {};
    if (error == EACCES && host::stat(file, &status) == 0 && (status.st_mode & S_IWUSR) == 0
        && host::chmod(file, (status.st_mode & 07777) | S_IWUSR) == 0) {
        error = set();
        static_cast<void>(!host::chmod(file, status.st_mode & 07777));
    }
    return error;
}

} // namespace platform::posix
