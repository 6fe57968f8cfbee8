#include "socle/platform/files.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"
#include "socle/platform/posix/host/report.h"

#include <cstddef>
#include <poll.h>

namespace platform {

namespace posix {

namespace {

/// The code of a transfer that failed: a handle that is open, but not for this, is no bad one.
system_code transfer_code(int file, host_error error) {
    bool const wrong_access = error == EBADF && host::status_flags(file) >= 0;
    return wrong_access || error == EISDIR ? ERROR_ACCESS_DENIED : code_of(error);
}

/// Whether a failed transfer is to be tried again: one that would wait on a descriptor that does not is waited for.
bool again(int file, short events) { return errno == EAGAIN && host::wait_for(file, events) >= 0; }

system_code read_file(int file, char * buffer, uint32 size, uint32 & done) {
    done = 0;
    mode_t kind = 0;
    while (done < size) {
        ssize_t const got = host::read(file, buffer + done, size - done);
        if (got < 0) {
            if (again(file, POLLIN))
                continue;
            return transfer_code(file, host_error::last());
        }
        done += static_cast<uint32>(got);
        if (done == size)
            break;
        struct stat status {};
        if (kind == 0) {
            if (host::fstat(file, &status) != 0)
                return last_code();
            kind = status.st_mode;
        }
        if (got == 0)
            return S_ISFIFO(kind) && done == 0 ? ERROR_BROKEN_PIPE : system_code();
        if (!S_ISREG(kind))
            break;
    }
    return {};
}

system_code write_file(int file, char const * buffer, uint32 size, uint32 & done) {
    done = 0;
    struct stat status {};
    if (host::fstat(file, &status) != 0)
        return last_code();
    bool const pipe = S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode);
    auto const write = pipe ? host::write_quietly : host::write;
    while (done < size) {
        ssize_t const written = write(file, buffer + done, size - done);
        if (written > 0)
            done += static_cast<uint32>(written);
        else if (written == 0)
            return ERROR_IO_DEVICE;
        else if (!again(file, POLLOUT))
            return transfer_code(file, host_error::last());
    }
    return {};
}

/// 0 if the handle is open for writing.
system_code check_writable(int file) {
    int const flags = host::status_flags(file);
    if (flags < 0)
        return last_code();
    return (flags & O_PATH) != 0 || (flags & O_ACCMODE) == O_RDONLY ? ERROR_ACCESS_DENIED : system_code();
}

system_code set_end(int file) {
    if (system_code const code = check_writable(file))
        return code;
    off_t const position = host::lseek(file, 0, SEEK_CUR);
    return last_code_if(position < 0 || host::ftruncate(file, position) != 0);
}

system_code flush(int file) {
    if (system_code const code = check_writable(file))
        return code;
    // What cannot be synced, a pipe or a terminal, holds nothing back.
    return last_code_if(host::fsync(file) != 0 && errno != EINVAL);
}

system_code set_position(int file, int64 distance, uint32 method, uint64 & position) {
    if (method == FILE_BEGIN && distance < 0)
        return ERROR_NEGATIVE_SEEK;
    off_t const reached = host::lseek(file, distance, method == FILE_BEGIN ? SEEK_SET : SEEK_CUR);
    if (reached < 0)
        return errno == EINVAL && distance < 0 ? ERROR_NEGATIVE_SEEK : transfer_code(file, host_error::last());
    position = static_cast<uint64>(reached);
    return {};
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
        return posix::report(posix::last_code());
    size = static_cast<uint64>(status.st_size);
    return posix::report(S_ISREG(status.st_mode) ? system_code() : ERROR_NOT_SUPPORTED);
}

uint32 GetFileType(int file) {
    struct stat status {};
    if (posix::host::fstat(file, &status) != 0) {
        posix::report(posix::last_code());
        return FILE_TYPE_UNKNOWN;
    }
    bool const pipe = S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode);
    return S_ISCHR(status.st_mode) ? FILE_TYPE_CHAR : pipe ? FILE_TYPE_PIPE : FILE_TYPE_DISK;
}

} // namespace platform
