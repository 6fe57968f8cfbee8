#include "socle/platform/files.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/host/report.h"

#include <sys/file.h>
#include <utility>

namespace platform {

namespace posix {

namespace {

bool reads(open_request const & request) { return (request.access & GENERIC_READ) != 0; }
bool writes(open_request const & request) { return (request.access & GENERIC_WRITE) != 0; }
bool opens_folders(open_request const & request) { return (request.flags & FILE_FLAG_BACKUP_SEMANTICS) != 0; }
bool times_only(open_request const & request) {
    bool const shares = (request.sharing & FILE_SHARE_WRITE) != 0;
    return request.access == 0 || (opens_folders(request) && !reads(request) && shares);
}
int access_flags(open_request const & request) {
    return writes(request) ? reads(request) ? O_RDWR : O_WRONLY : O_RDONLY;
}

/// The standard streams keep their numbers, also while they are closed.
descriptor_guard open_above_standard(host::at const & path, int flags, mode_t mode = new_file_mode) {
    descriptor_guard file = open_descriptor(path, flags, mode);
    if (file.get() > STDERR_FILENO || file.get() < 0)
        return file;
    return descriptor_guard(host::duplicate(file.get(), STDERR_FILENO + 1));
}

system_code lock(int file, open_request const & request) {
    bool const excludes_writers = reads(request) && (request.sharing & FILE_SHARE_WRITE) == 0;
    if (!writes(request) && !excludes_writers)
        return {};
    bool const refused = is_locked_out(file, writes(request) ? LOCK_EX : LOCK_SH);
    return refused ? ERROR_SHARING_VIOLATION : system_code();
}

/// Opens without waiting for the other end of a pipe. `errno` tells of a failure.
descriptor_guard open_for(resolved_path const & at, open_request const & request, stream_place const * stream) {
    int const folder = (at.is_folder ? O_DIRECTORY : 0) | (stream != nullptr ? stream->flags() : 0);
    if (times_only(request)) {
        descriptor_guard file = open_above_standard(at.at(), O_PATH | folder);
        bool const lost = file.get() < 0 && leads_nowhere(host_error::last()) && !at.is_folder && stream == nullptr;
        // A link without a target answers for itself.
        return lost ? open_above_standard(at.at(), O_PATH | O_NOFOLLOW) : std::move(file);
    }
    descriptor_guard file = open_above_standard(at.at(), access_flags(request) | O_NONBLOCK | folder);
    bool const writes_folder = file.get() < 0 && errno == EISDIR && opens_folders(request);
    return writes_folder ? open_above_standard(at.at(), O_PATH | O_DIRECTORY) : std::move(file);
}

/// What stays to be checked when the file is open; empties it last if that is asked for.
system_code admit(int file, resolved_path const & at, open_request const & request, stream_place const * stream) {
    if (system_code const code = stream != nullptr ? stream->admit(file) : system_code())
        return code;
    struct stat status {};
    if (host::fstat(file, &status) != 0)
        return last_code();
    if (S_ISDIR(status.st_mode))
        return opens_folders(request) ? system_code() : ERROR_ACCESS_DENIED;
    if (times_only(request))
        return {};
    if (!S_ISREG(status.st_mode)) {
        int const flags = host::status_flags(file);
        return last_code_if(flags < 0 || host::set_status_flags(file, flags & ~O_NONBLOCK) != 0);
    }
    if (writes(request) && is_read_only(*at.on, at.at(), status.st_mode))
        return ERROR_ACCESS_DENIED;
    if (system_code const code = lock(file, request))
        return code;
    return last_code_if(request.disposition == CREATE_ALWAYS && host::ftruncate(file, 0) != 0);
}

/// Whether the name may be made, asked where a look is needed for that.
system_code check_new(resolved_path const & at, open_request const & request) {
    if (at.safe && !at.is_folder)
        return {};
    struct stat status {};
    bool const there = host::lstat(at.at(), &status) == 0;
    bool const link = S_ISLNK(status.st_mode);
    if (at.is_folder && !link && !S_ISDIR(status.st_mode))
        return ERROR_PATH_NOT_FOUND;
    if (link || (there && request.disposition == CREATE_NEW))
        return ERROR_FILE_EXISTS;
    return there || at.safe ? system_code() : ERROR_INVALID_NAME;
}

/// Opens or makes the file, as `open_request::disposition` asks for. `stream` is given if it is a named stream.
system_code open_file(resolved_path const & at, open_request const & request, descriptor_guard & file,
                      stream_place const * stream = nullptr) {
    mode_t const mode = stream != nullptr ? new_stream_mode : new_file_mode;
    // Again if the file comes or goes between two calls, but not for ever.
    for (int attempt = 0; attempt < 100; ++attempt) {
        if (request.disposition != CREATE_NEW) {
            file = open_for(at, request, stream);
            if (file.get() >= 0)
                return admit(file.get(), at, request, stream);
            if (stream != nullptr && errno == ELOOP)
                return ERROR_ACCESS_DENIED; // what somebody has put there leads nowhere
            if (request.disposition == OPEN_EXISTING || !leads_nowhere(host_error::last()))
                return last_code_at(at);
        }
        if (system_code const code = check_new(at, request))
            return code;
        file = open_above_standard(at.at(), access_flags(request) | O_CREAT | O_EXCL, mode);
        if (file.get() >= 0) {
            system_code const code = stream != nullptr ? stream->admit(file.get()) : system_code();
            return code ? code : lock(file.get(), request);
        }
        if (errno != EEXIST)
            return last_code_at(at);
        struct stat status {};
        if (request.disposition == CREATE_NEW || (host::lstat(at.at(), &status) == 0 && S_ISLNK(status.st_mode)))
            return ERROR_FILE_EXISTS; // nothing is made behind a link that dangles
    }
    return ERROR_SHARING_VIOLATION;
}

/// A named stream. Creating one makes its file as well.
system_code open_stream(resolved_path const & at, open_request const & request, descriptor_guard & file) {
    bool const creates = request.disposition != OPEN_EXISTING;
    struct stat status {};
    if (host::stat(at.at(), &status) != 0) {
        system_code const code = last_code_at(at);
        if (code != ERROR_FILE_NOT_FOUND || !creates)
            return code;
        descriptor_guard made;
        if (system_code const failed = open_file(at, {GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW, 0}, made))
            return failed;
    } else if ((writes(request) || creates) && is_read_only(*at.on, at.at(), status.st_mode)) {
        return ERROR_ACCESS_DENIED;
    }
    using purpose = named_streams::purpose;
    purpose const wanted = creates ? purpose::create : writes(request) ? purpose::change : purpose::look;
    stream_place place;
    if (system_code const code = at.on->streams->locate(at.at(), at.stream, wanted, place))
        return code;
    resolved_path stream;
    stream.on = at.on;
    stream.folder = place.at().folder();
    stream.name = place.name;
    return open_file(stream, request, file, &place);
}

} // namespace

system_code open_at(resolved_path const & at, open_request const & request, descriptor_guard & file) {
    return at.stream.empty() ? open_file(at, request, file) : open_stream(at, request, file);
}

} // namespace posix

int CreateFileW(wide_string const & path, uint32 access, uint32 sharing, uint32 disposition, uint32 flags) {
    posix::descriptor_guard file;
    system_code const code = posix::with_path(path, [&](posix::resolved_path const & at) {
        return posix::open_at(at, {access, sharing, disposition, flags}, file);
    });
    return posix::report(code) ? file.release() : INVALID_HANDLE_VALUE;
}

int GetStdHandle(uint32 which) {
    uint32 const number = STD_INPUT_HANDLE - which;
    if (number > STDERR_FILENO) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    int const file = posix::host::duplicate(static_cast<int>(number), STDERR_FILENO + 1);
    return posix::report(posix::last_code_if(file < 0)) ? file : INVALID_HANDLE_VALUE;
}

bool CloseHandle(int file) {
    // The descriptor is gone when a signal interrupted the call; closing it again might hit another thread's.
    bool const closed = posix::host::close(file) == 0 || errno == EINTR;
    return posix::report(posix::last_code_if(!closed));
}

} // namespace platform
