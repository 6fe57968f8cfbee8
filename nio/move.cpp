#include "nio/move.h"

#include "nio/filesystem_exception.h"
#include "nio/fork_names.h"
#include "nio/path.h"
#include "platform/errors.h"
#include "platform/files.h"

namespace nio {

namespace {

/// Takes the sidecar along, and the sidecar's own. False if it is there and stays.
bool move_sidecar(wide_string const & from, wide_string const & to) {
    if (!exists_ufs(from)) {
        return true;
    }
    wide_string const sidecar = ufs_name(from);
    wide_string const target = ufs_name(to);
    if (!platform::MoveFileW(sidecar, target)) {
        return false;
    }
    move_sidecar(sidecar, target);
    return true;
}

} // namespace

bool move(wide_string const & from, wide_string & to, bool must_succeed) {
    if (!platform::MoveFileW(from, to)) {
        if (must_succeed) {
            throw filesystem_exception("cannot move", from);
        }
        wide_string const safe = normalize(to);
        if (safe == to) {
            return false;
        }
        to = safe;
        move(from, to, true);
        return true;
    }
    if (!move_sidecar(from, to) && must_succeed) {
        uint32 const error = platform::GetLastError();
        platform::MoveFileW(to, from);
        platform::SetLastError(error);
        throw filesystem_exception("cannot move", from);
    }
    return false;
}

} // namespace nio
