#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/posix/files/attributes.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <cerrno>
#include <optional>

namespace platform {

namespace posix {

namespace {

uint32 delete_file(std::u16string_view path) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    narrow_string const file = at.host_path();
    struct stat status {};
    if (host::lstat(file, &status) != 0)
        return code_at(file, errno);
    // A link is removed itself, whatever it leads to.
    if (S_ISDIR(status.st_mode) && at.stream.empty())
        return ERROR_ACCESS_DENIED;
    if (S_ISREG(status.st_mode) && is_read_only(*at.on, file, status.st_mode))
        return ERROR_ACCESS_DENIED;
    if (!at.stream.empty()) {
        narrow_string stream;
        uint32 const code = at.on->streams->locate(at.host, at.stream, false, stream);
        return code != 0 ? code : host::unlink(stream) == 0 ? 0 : code_of(errno);
    }
    std::optional<stream_removal> streams;
    if (at.on->streams)
        streams.emplace(*at.on->streams, at.host);
    if (host::unlink(file) != 0)
        return code_at(file, errno);
    if (streams)
        streams->name_removed();
    return 0;
}

} // namespace

} // namespace posix

bool DeleteFileW(wide_string const & path) { return posix::report(posix::delete_file(path)); }

} // namespace platform
