#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace nio {

/// Moves a file with its sidecar; nothing is overwritten. True if `to` was changed, because it was not accepted and the
/// normalized name was.
/// - With `must_succeed`, throws `nio::filesystem_exception`, "cannot move", and the file is where it was.
/// - Without it, a failure throws only if the normalized name differs, from the attempt with that. If it does not, the
///   file and its sidecar stay.
SOCLE_API bool move(wide_string const & from, wide_string & to, bool must_succeed);

} // namespace nio
