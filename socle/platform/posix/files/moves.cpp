#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/posix/files/copies.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <cerrno>
#include <new>
#include <vector>

namespace platform {

namespace posix {

namespace {

/// Whether both paths are one entry of one folder, however they are spelled.
bool same_entry(narrow_string const & a, narrow_string const & b) {
    auto const cut = [](narrow_string const & path) { return path.rfind('/') + 1; };
    struct stat first {};
    struct stat second {};
    return a.substr(cut(a)) == b.substr(cut(b)) && host::stat(a.substr(0, cut(a)), &first) == 0
           && host::stat(b.substr(0, cut(b)), &second) == 0 && first.st_dev == second.st_dev
           && first.st_ino == second.st_ino;
}

/// Lets the streams of a file know where it is now, as far as that works: they find it without, too.
void note_name(resolved_path const & at) {
    try {
        std::vector<wide_string> names;
        narrow_string host;
        if (at.on->streams && at.on->streams->list(at.host, names) == 0 && !names.empty())
            at.on->streams->locate(at.host, names.front(), true, host);
    } catch (std::bad_alloc const &) {
        // The move is done all the same.
    }
}

uint32 move(std::u16string_view from_path, std::u16string_view to_path) {
    resolved_path from, to;
    if (uint32 const code = resolve(from_path, from))
        return code;
    if (uint32 const code = resolve(to_path, to))
        return code;
    if (!from.stream.empty() || !to.stream.empty())
        return ERROR_INVALID_NAME;
    struct stat status {};
    if (host::lstat(from.host_path(), &status) != 0)
        return code_at(from.host_path(), errno);
    if (same_entry(from.host, to.host))
        return 0;
    struct stat there {};
    if (host::lstat(to.host, &there) == 0)
        return ERROR_ALREADY_EXISTS;
    if (!to.safe)
        return ERROR_INVALID_NAME;
    if (to.folder && !S_ISDIR(status.st_mode))
        return ERROR_PATH_NOT_FOUND;
    // A folder's streams lie within its volume, as far as one rename goes.
    int const error = from.on == to.on ? rename_unless_there(from.host, to.host) : EXDEV;
    switch (error) {
    case 0: note_name(to); return 0;
    case EXDEV: {
        uint32 const code = move_between(from, to);
        if (code == 0)
            note_name(to);
        return code;
    }
    case EINVAL: return S_ISDIR(status.st_mode) ? ERROR_SHARING_VIOLATION : code_of(error); // into itself
    default: return code_at(to.host, error);
    }
}

} // namespace

} // namespace posix

bool MoveFileW(wide_string const & from, wide_string const & to) { return posix::report(posix::move(from, to)); }

} // namespace platform
