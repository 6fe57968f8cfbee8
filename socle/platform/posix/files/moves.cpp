#include "socle/platform/files.h"
#include "socle/platform/paths.h"
#include "socle/platform/posix/files/copies.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/files/renames.h"
#include "socle/platform/posix/host/report.h"

namespace platform {

namespace posix {

namespace {

/// Whether both paths are one entry of one folder, however they are spelled.
bool same_entry(resolved_path const & a, resolved_path const & b) {
    auto const leaf = [](resolved_path const & at) { return std::string_view(at.name).substr(at.beside("").size()); };
    struct stat first {};
    struct stat second {};
    narrow_string const folder = a.beside(".");
    narrow_string const other = b.beside(".");
    return leaf(a) == leaf(b) && host::stat(a.at(folder), &first) == 0 && host::stat(b.at(other), &second) == 0
           && is_same_file(first, second);
}

/// A folder's streams lie within its volume, as far as one rename goes.
host_error rename_in_volume(resolved_path const & from, resolved_path const & to) {
    return from.on == to.on ? rename_unless_there(from.at(), to.at()) : host_error(EXDEV);
}

/// What stands against a move, told by looks; 0 if nothing does. `same` tells whether there is nothing to do.
system_code check_move(resolved_path const & from, resolved_path const & to, mode_t & mode, bool & same) {
    uint32 kind = 0;
    if (system_code const code = from.is_folder ? kind_at(from, kind) : system_code())
        return code;
    struct stat status {};
    if (host::lstat(from.at(), &status) != 0)
        return last_code_at(from);
    mode = status.st_mode;
    same = same_entry(from, to);
    if (same)
        return {};
    if (host::lstat(to.at(), &status) == 0)
        return ERROR_ALREADY_EXISTS;
    if (!to.safe)
        return ERROR_INVALID_NAME;
    return to.is_folder && !S_ISDIR(mode) ? ERROR_PATH_NOT_FOUND : system_code();
}

} // namespace

system_code move_at(resolved_path const & from, resolved_path const & to) {
    if (!from.stream.empty() || !to.stream.empty())
        return ERROR_INVALID_NAME;
    bool const plain = to.safe && !to.is_folder && !from.is_folder;
    host_error error = plain ? rename_in_volume(from, to) : host_error(EXDEV);
    mode_t mode = 0;
    bool same = false;
    if (error) {
        if (system_code const code = check_move(from, to, mode, same))
            return code;
        if (same)
            return {};
        if (!plain)
            error = rename_in_volume(from, to);
    }
    system_code code;
    if (error == EXDEV)
        code = move_between(from, to);
    else if (error == EINVAL && S_ISDIR(mode))
        code = ERROR_SHARING_VIOLATION; // into itself
    else
        code = code_at(to, error);
    if (!code && to.on->streams)
        to.on->streams->moved(to.at());
    return code;
}

} // namespace posix

bool MoveFileW(wide_string const & from, wide_string const & to) {
    held_paths const both;
    return posix::report(posix::with_path(from, [&](posix::resolved_path const & source) {
        return posix::with_path(to,
                                [&](posix::resolved_path const & target) { return posix::move_at(source, target); });
    }));
}

} // namespace platform
