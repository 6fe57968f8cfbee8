#include "socle/platform/files.h"
#include "socle/platform/posix/files/attributes.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <cerrno>
#include <sys/file.h>

namespace platform {

namespace posix {

namespace {

/// How a file is to be opened.
struct open_request {
    uint32 access;
    uint32 sharing;
    uint32 disposition;
    uint32 flags;

    bool reads() const { return (access & GENERIC_READ) != 0; }
    bool writes() const { return (access & GENERIC_WRITE) != 0; }
    bool folders() const { return (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0; }
    bool times_only() const { return access == 0 || (folders() && !reads() && (sharing & FILE_SHARE_WRITE) != 0); }
    int host_flags() const { return writes() ? reads() ? O_RDWR : O_WRONLY : O_RDONLY; }
};

/// The standard streams keep their numbers, also while they are closed.
int open_above_standard(narrow_string const & path, int flags) {
    descriptor_guard file = open_descriptor(path, flags);
    return file.get() > STDERR_FILENO || file.get() < 0 ? file.release()
                                                        : host::duplicate(file.get(), STDERR_FILENO + 1);
}

uint32 lock(int file, open_request const & request) {
    bool const excludes_writers = request.reads() && (request.sharing & FILE_SHARE_WRITE) == 0;
    if (!request.writes() && !excludes_writers)
        return 0;
    int const kind = request.writes() ? LOCK_EX : LOCK_SH;
    // On a host without locks everybody is let in.
    return host::flock(file, kind | LOCK_NB) != 0 && errno == EWOULDBLOCK ? ERROR_SHARING_VIOLATION : 0;
}

/// Opens without waiting for the other end of a pipe.
int open_for(narrow_string const & path, open_request const & request) {
    if (request.times_only()) {
        int const file = open_above_standard(path, O_PATH);
        bool const lost = file < 0 && (errno == ENOENT || errno == ELOOP);
        // A link without a target answers for itself.
        return lost ? open_above_standard(path, O_PATH | O_NOFOLLOW) : file;
    }
    int const file = open_above_standard(path, request.host_flags() | O_NONBLOCK);
    return file < 0 && errno == EISDIR && request.folders() ? open_above_standard(path, O_RDONLY | O_DIRECTORY) : file;
}

/// What stays to be checked when the file is open.
uint32 admit(int file, volume const & on, narrow_string const & path, open_request const & request) {
    struct stat status {};
    if (host::fstat(file, &status) != 0)
        return code_of(errno);
    if (S_ISDIR(status.st_mode))
        return request.folders() ? 0 : ERROR_ACCESS_DENIED;
    if (request.times_only())
        return 0;
    if (!S_ISREG(status.st_mode)) {
        int const flags = host::status_flags(file);
        return flags >= 0 && host::set_status_flags(file, flags & ~O_NONBLOCK) == 0 ? 0 : code_of(errno);
    }
    if (request.writes() && is_read_only(on, path, status.st_mode))
        return ERROR_ACCESS_DENIED;
    return lock(file, request);
}

uint32 open_existing(volume const & on, narrow_string const & path, open_request const & request,
                     descriptor_guard & file) {
    file = descriptor_guard(open_for(path, request));
    if (file.get() < 0)
        return code_at(path, errno);
    if (uint32 const code = admit(file.get(), on, path, request))
        return code;
    struct stat status {};
    if (request.disposition != CREATE_ALWAYS)
        return 0;
    bool const emptied = host::fstat(file.get(), &status) == 0
                         && (!S_ISREG(status.st_mode) || status.st_size == 0 || host::ftruncate(file.get(), 0) == 0);
    return emptied ? 0 : code_of(errno);
}

/// What `open_request::disposition` asks for; `safe` tells whether the name may be made.
uint32 open_or_make(volume const & on, narrow_string const & path, bool safe, open_request const & request,
                    descriptor_guard & file) {
    if (request.disposition == OPEN_EXISTING)
        return open_existing(on, path, request, file);
    // Again if the file comes or goes between two calls, but not for ever.
    for (int attempt = 0; attempt < 100; ++attempt) {
        if (request.disposition == CREATE_ALWAYS) {
            uint32 const code = open_existing(on, path, request, file);
            if (code != ERROR_FILE_NOT_FOUND)
                return code;
        }
        struct stat status {};
        bool const there = host::lstat(path, &status) == 0;
        if (there && (request.disposition == CREATE_NEW || S_ISLNK(status.st_mode)))
            return ERROR_FILE_EXISTS;
        if (!there && path.back() == '/')
            return ERROR_PATH_NOT_FOUND; // a separator at the end stands for a folder
        if (!there && !safe)
            return ERROR_INVALID_NAME;
        file = descriptor_guard(open_above_standard(path, request.host_flags() | O_CREAT | O_EXCL));
        if (file.get() >= 0)
            return lock(file.get(), request);
        if (errno != EEXIST)
            return code_at(path, errno);
    }
    return ERROR_SHARING_VIOLATION;
}

/// A named stream. Creating one makes its file as well.
uint32 open_stream(resolved_path const & at, open_request const & request, descriptor_guard & file) {
    bool const creates = request.disposition != OPEN_EXISTING;
    struct stat status {};
    if (host::stat(at.host, &status) != 0) {
        uint32 const code = code_at(at.host, errno);
        if (code != ERROR_FILE_NOT_FOUND || !creates)
            return code;
        descriptor_guard made;
        uint32 const failed =
            open_or_make(*at.on, at.host, at.safe, {GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW, 0}, made);
        if (failed != 0)
            return failed;
    } else if ((request.writes() || creates) && is_read_only(*at.on, at.host, status.st_mode)) {
        return ERROR_ACCESS_DENIED;
    }
    narrow_string stream;
    uint32 const code = at.on->streams->locate(at.host, at.stream, creates, stream);
    return code != 0 ? code : open_or_make(*at.on, stream, true, request, file);
}

uint32 open_file(std::u16string_view path, open_request const & request, descriptor_guard & file) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    return at.stream.empty() ? open_or_make(*at.on, at.host_path(), at.safe, request, file)
                             : open_stream(at, request, file);
}

} // namespace

} // namespace posix

int CreateFileW(wide_string const & path, uint32 access, uint32 sharing, uint32 disposition, uint32 flags) {
    posix::descriptor_guard file;
    uint32 const code = posix::open_file(path, {access, sharing, disposition, flags}, file);
    return posix::report(code) ? file.release() : INVALID_HANDLE_VALUE;
}

int GetStdHandle(uint32 which) {
    uint32 const number = STD_INPUT_HANDLE - which;
    if (number > STDERR_FILENO) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    int const file = posix::host::duplicate(static_cast<int>(number), STDERR_FILENO + 1);
    return posix::report(file < 0 ? posix::code_of(errno) : 0) ? file : INVALID_HANDLE_VALUE;
}

bool CloseHandle(int file) {
    // The descriptor is gone when a signal interrupted the call; closing it again might hit another thread's.
    bool const closed = posix::host::close(file) == 0 || errno == EINTR;
    return posix::report(closed ? 0 : posix::code_of(errno));
}

} // namespace platform
