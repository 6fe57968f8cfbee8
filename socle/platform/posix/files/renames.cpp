#include "socle/platform/posix/files/renames.h"

namespace platform::posix {

namespace {

bool cannot_promise(host_error error) {
    switch (error.value()) {
    case EINVAL:
    case ENOSYS:
    case ENOTSUP:
    case EPERM:
    case EMLINK: return true;
    default: return false;
    }
}

} // namespace

host_error rename_unless_there(host::at const & from, host::at const & to) {
    if (host::rename_no_replace(from, to) == 0)
        return {};
    if (host_error const error = host_error::last(); !cannot_promise(error))
        return error;
    struct stat status {};
    if (host::lstat(from, &status) != 0)
        return host_error::last();
    if (!S_ISDIR(status.st_mode)) {
        if (host::link(from, to) == 0) {
            if (host::unlink(from) == 0)
                return {};
            host_error const error = host_error::last();
            host::unlink(to);
            return error;
        }
        if (host_error const error = host_error::last(); !cannot_promise(error))
            return error;
    }
    // No way that holds in a race.
    if (host::lstat(to, &status) == 0)
        return host_error(EEXIST);
    return host_error::last_if(host::rename(from, to) != 0);
}

} // namespace platform::posix
