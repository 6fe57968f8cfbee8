#include "socle/platform/directories.h"

#include "socle/platform/errors.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <cerrno>
#include <optional>

namespace platform {

namespace posix {

namespace {

uint32 create_directory(std::u16string_view path) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    if (!at.stream.empty())
        return ERROR_INVALID_NAME;
    struct stat status {};
    if (!at.safe && host::lstat(at.host, &status) != 0)
        return ERROR_INVALID_NAME;
    constexpr mode_t everyone = S_IRWXU | S_IRWXG | S_IRWXO;
    return host::mkdir(at.host, everyone) == 0 ? 0 : code_at(at.host, errno);
}

uint32 remove_directory(std::u16string_view path) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    struct stat status {};
    if (host::lstat(at.host, &status) != 0)
        return code_at(at.host, errno);
    bool const link = S_ISLNK(status.st_mode);
    if (link && host::stat(at.host, &status) != 0)
        return ERROR_DIRECTORY;
    if (!S_ISDIR(status.st_mode) || !at.stream.empty())
        return ERROR_DIRECTORY;
    if (link)
        return host::unlink(at.host) == 0 ? 0 : code_at(at.host, errno);
    std::optional<stream_removal> streams;
    if (at.on->streams)
        streams.emplace(*at.on->streams, at.host);
    if (host::rmdir(at.host) != 0)
        return errno == EEXIST ? ERROR_DIR_NOT_EMPTY : code_at(at.host, errno);
    if (streams)
        streams->name_removed();
    return 0;
}

} // namespace

} // namespace posix

bool CreateDirectoryW(wide_string const & path) { return posix::report(posix::create_directory(path)); }

bool RemoveDirectoryW(wide_string const & path) { return posix::report(posix::remove_directory(path)); }

} // namespace platform
