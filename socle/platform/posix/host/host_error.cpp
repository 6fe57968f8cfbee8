#include "socle/platform/posix/host/host_error.h"

namespace platform::posix {

bool is_about_path(host_error error) {
    switch (error.value()) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case EACCES:
    case ENAMETOOLONG: return true;
    default: return false;
    }
}

system_code code_of(host_error error) {
    switch (error.value()) {
    case 0: return {};
    case ENOENT: return ERROR_FILE_NOT_FOUND;
    case ENOTDIR: return ERROR_PATH_NOT_FOUND;
    case EMFILE:
    case ENFILE: return ERROR_TOO_MANY_OPEN_FILES;
    case EBADF: return ERROR_INVALID_HANDLE;
    case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
    case EXDEV: return ERROR_NOT_SAME_DEVICE;
    case EROFS: return ERROR_WRITE_PROTECT;
    case EAGAIN:
    case EBUSY:
    case ETXTBSY: return ERROR_SHARING_VIOLATION;
    case ENOSYS:
    case ENOTSUP: return ERROR_NOT_SUPPORTED;
    case EEXIST: return ERROR_ALREADY_EXISTS;
    case ESPIPE: return ERROR_SEEK;
    case EINVAL: return ERROR_INVALID_PARAMETER;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return ERROR_DISK_FULL;
    case EILSEQ: return ERROR_INVALID_NAME;
    case ENOTEMPTY: return ERROR_DIR_NOT_EMPTY;
    case ENAMETOOLONG: return ERROR_FILENAME_EXCED_RANGE;
    case EPIPE: return ERROR_NO_DATA;
    case EIO: return ERROR_IO_DEVICE;
    case EUCLEAN: return ERROR_FILE_CORRUPT;
    default: return ERROR_ACCESS_DENIED;
    }
}

} // namespace platform::posix
