#include "socle/nio/move.h"

#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "socle/nio/item.h"
#include "socle/nio/path.h"
#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/paths.h"

#include <new>
#include <vector>

namespace nio {

namespace {

struct step {
    wide_string from;
    wide_string to;
};

/// How the sidecar, the sidecar's own, and so on, as far as they are there, go along. False if one may be out of reach.
bool find_sidecars(wide_string from, wide_string to, std::vector<step> & steps) {
    for (;;) {
        from = ufs_name(from);
        if (!exists(from))
            return platform::nothing_is_there();
        to = ufs_name(to);
        steps.push_back({from, to});
    }
}

/// False if the first one stays.
bool move_sidecars(std::vector<step> const & steps) {
    std::size_t done = 0;
    try {
        while (done < steps.size() && platform::MoveFileW(steps[done].from, steps[done].to))
            ++done;
    } catch (std::bad_alloc const &) {
        while (done-- > 0)
            platform::MoveFileW(steps[done].to, steps[done].from);
        throw;
    }
    return steps.empty() || done > 0;
}

} // namespace

bool move(wide_string const & from, wide_string & to, bool must_succeed) {
    platform::held_paths const hold;
    // Looked for before the move, after which the file might bear the name of one.
    std::vector<step> sidecars;
    bool const known = find_sidecars(from, to, sidecars);
    if (!known || !platform::MoveFileW(from, to)) {
        if (must_succeed)
            throw filesystem_exception("cannot move", from);
        wide_string const safe = normalize(to);
        if (safe == to)
            return false;
        to = safe;
        move(from, to, true);
        return true;
    }
    try {
        if (move_sidecars(sidecars) || !must_succeed)
            return false;
    } catch (std::bad_alloc const &) {
        platform::MoveFileW(to, from);
        throw;
    }
    uint32 const error = platform::GetLastError();
    platform::MoveFileW(to, from);
    platform::SetLastError(error);
    throw filesystem_exception("cannot move", from);
}

} // namespace nio
