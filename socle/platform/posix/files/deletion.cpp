#include "socle/platform/directories.h"
#include "socle/platform/files.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/host/report.h"

namespace platform {

namespace posix {

namespace {

system_code delete_stream(resolved_path const & at) {
    stream_place stream;
    system_code const code = at.on->streams->locate(at.at(), at.stream, named_streams::purpose::change, stream);
    return code ? code : last_code_if(host::unlink(stream.at()) != 0);
}

/// Whether what a path that ends in a separator names is neither a folder nor a link to one.
bool is_no_folder(resolved_path const & at, mode_t mode) {
    struct stat target {};
    bool const to_folder = S_ISLNK(mode) && host::stat(at.at(), &target) == 0 && S_ISDIR(target.st_mode);
    return !S_ISDIR(mode) && !to_folder;
}

} // namespace

system_code delete_at(resolved_path const & at) {
    struct stat status {};
    if (host::lstat(at.at(), &status) != 0)
        return last_code_at(at);
    if (at.is_folder && is_no_folder(at, status.st_mode))
        return ERROR_PATH_NOT_FOUND;
    // A link is removed itself, whatever it leads to.
    if (S_ISDIR(status.st_mode) && at.stream.empty())
        return ERROR_ACCESS_DENIED;
    if (S_ISREG(status.st_mode) && is_read_only(*at.on, at.at(), status.st_mode))
        return ERROR_ACCESS_DENIED;
    return at.stream.empty() ? code_at(at, remove_with_streams(at.on->streams.get(), at.at(), host::unlink))
                             : delete_stream(at);
}

system_code remove_folder_at(resolved_path const & at) {
    host_error const error =
        at.stream.empty() ? remove_with_streams(at.on->streams.get(), at.at(), host::rmdir) : host_error(ENOTDIR);
    if (error == EEXIST)
        return ERROR_DIR_NOT_EMPTY;
    if (error == EINVAL) // a volume's own
        return ERROR_SHARING_VIOLATION;
    if (error != ENOTDIR)
        return code_at(at, error);
    // A file, or a link.
    struct stat status {};
    if (host::lstat(at.at(), &status) != 0)
        return last_code_at(at);
    bool const removable = S_ISLNK(status.st_mode) && at.stream.empty() && !is_no_folder(at, status.st_mode);
    return removable ? last_code_at_if(host::unlink(at.at()) != 0, at) : ERROR_DIRECTORY;
}

} // namespace posix

bool DeleteFileW(wide_string const & path) { return posix::report(posix::with_path(path, posix::delete_at)); }

bool RemoveDirectoryW(wide_string const & path) {
    return posix::report(posix::with_path(path, posix::remove_folder_at));
}

} // namespace platform
