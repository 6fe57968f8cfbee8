#include "nio/move.h"

#include "nio/filesystem_exception.h"
#include "nio/fork_names.h"
#include "nio/item.h"
#include "nio/path.h"
#include "platform/errors.h"
#include "platform/files.h"

#include <vector>

namespace nio {

namespace {

/// The sidecar, the sidecar's own, and so on, as far as they are there.
std::vector<wide_string> sidecars_of(wide_string const & path) {
    std::vector<wide_string> sidecars;
    for (wide_string name = ufs_name(path); exists(name); name = ufs_name(name)) {
        sidecars.push_back(name);
    }
    return sidecars;
}

/// Takes them along. False if the first one stays.
bool move_sidecars(std::vector<wide_string> const & sidecars, wide_string const & to) {
    wide_string target = to;
    for (wide_string const & sidecar : sidecars) {
        target = ufs_name(target);
        if (!platform::MoveFileW(sidecar, target)) {
            return &sidecar != &sidecars.front();
        }
    }
    return true;
}

} // namespace

bool move(wide_string const & from, wide_string & to, bool must_succeed) {
    // Looked for before the move, after which the file might bear the name of one.
    auto const sidecars = sidecars_of(from);
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
    if (!move_sidecars(sidecars, to) && must_succeed) {
        uint32 const error = platform::GetLastError();
        platform::MoveFileW(to, from);
        platform::SetLastError(error);
        throw filesystem_exception("cannot move", from);
    }
    return false;
}

} // namespace nio
