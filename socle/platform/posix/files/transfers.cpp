#include "socle/platform/files.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"

#include <cerrno>
#include <cstddef>
#include <poll.h>

namespace platform {

namespace posix {

namespace {

/// The code of a transfer that failed: a handle that is open, but not for this, is no bad one.
uint32 transfer_code(int file, int error) {
    bool const wrong_access = error == EBADF && host::status_flags(file) >= 0;
    return wrong_access || error == EISDIR ? ERROR_ACCESS_DENIED : code_of(error);
}

/// Whether a failed transfer is to be tried again. One that would wait on a descriptor that does not is waited for.
bool again(int file, short events) {
    if (errno == EINTR)
        return true;
    return (errno == EAGAIN || errno == EWOULDBLOCK) && (host::wait_for(file, events) >= 0 || errno == EINTR);
}

uint32 read_file(int file, char * buffer, uint32 size, uint32 & done) {
    done = 0;
    mode_t kind = 0;
    while (done < size) {
        ssize_t const got = host::read(file, buffer + done, size - done);
        if (got < 0) {
            if (again(file, POLLIN))
                continue;
            return transfer_code(file, errno);
        }
        done += static_cast<uint32>(got);
        if (done == size)
            break;
        struct stat status {};
        if (kind == 0) {
            if (host::fstat(file, &status) != 0)
                return code_of(errno);
            kind = status.st_mode;
        }
        if (got == 0)
            return S_ISFIFO(kind) && done == 0 ? ERROR_BROKEN_PIPE : 0;
        if (!S_ISREG(kind))
            break;
    }
    return 0;
}

uint32 write_file(int file, char const * buffer, uint32 size, uint32 & done) {
    done = 0;
    struct stat status {};
    if (host::fstat(file, &status) != 0)
        return code_of(errno);
    bool const pipe = S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode);
    auto const write = pipe ? host::write_quietly : host::write;
    while (done < size) {
        ssize_t const written = write(file, buffer + done, size - done);
        if (written > 0)
            done += static_cast<uint32>(written);
        else if (written == 0)
            return ERROR_IO_DEVICE;
        else if (!again(file, POLLOUT))
            return transfer_code(file, errno);
    }
    return 0;
}

/// 0 if the handle is open for writing.
uint32 check_writable(int file) {
    int const flags = host::status_flags(file);
    if (flags < 0)
        return code_of(errno);
    return (flags & O_PATH) != 0 || (flags & O_ACCMODE) == O_RDONLY ? ERROR_ACCESS_DENIED : 0;
}

uint32 set_end(int file) {
    if (uint32 const code = check_writable(file))
        return code;
    off_t const position = host::lseek(file, 0, SEEK_CUR);
    return position >= 0 && host::ftruncate(file, position) == 0 ? 0 : code_of(errno);
}

uint32 flush(int file) {
    if (uint32 const code = check_writable(file))
        return code;
    // What cannot be synced, a pipe or a terminal, holds nothing back.
    return host::fsync(file) == 0 || errno == EINVAL ? 0 : code_of(errno);
}

uint32 set_position(int file, int64 distance, uint32 method, uint64 & position) {
    if (method == FILE_BEGIN && distance < 0)
        return ERROR_NEGATIVE_SEEK;
    off_t const reached = host::lseek(file, distance, method == FILE_BEGIN ? SEEK_SET : SEEK_CUR);
    if (reached < 0)
        return errno == EINVAL && distance < 0 ? ERROR_NEGATIVE_SEEK : transfer_code(file, errno);
    position = static_cast<uint64>(reached);
    return 0;
}

} // namespace

} // namespace posix

bool ReadFile(int file, char * buffer, uint32 size, uint32 & done) {
    return posix::report(posix::read_file(file, buffer, size, done));
}

bool WriteFile(int file, char const * buffer, uint32 size, uint32 & done) {
    return posix::report(posix::write_file(file, buffer, size, done));
}

bool SetFilePointer(int file, int64 distance, uint32 method, uint64 & position) {
    return posix::report(posix::set_position(file, distance, method, position));
}

bool SetEndOfFile(int file) { return posix::report(posix::set_end(file)); }

bool FlushFileBuffers(int file) { return posix::report(posix::flush(file)); }

bool GetFileSize(int file, uint64 & size) {
    struct stat status {};
    if (posix::host::fstat(file, &status) != 0)
        return posix::report(posix::code_of(errno));
    size = static_cast<uint64>(status.st_size);
    return posix::report(S_ISREG(status.st_mode) ? 0 : ERROR_NOT_SUPPORTED);
}

uint32 GetFileType(int file) {
    struct stat status {};
    if (posix::host::fstat(file, &status) != 0) {
        posix::report(posix::code_of(errno));
        return FILE_TYPE_UNKNOWN;
    }
    bool const pipe = S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode);
    return S_ISCHR(status.st_mode) ? FILE_TYPE_CHAR : pipe ? FILE_TYPE_PIPE : FILE_TYPE_DISK;
}

} // namespace platform
