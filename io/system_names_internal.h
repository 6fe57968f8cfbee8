#pragma once

#include "any/path.h"
#include "io/item.h"
#include "platform/ansi_text.h"

namespace io {

/// How a path goes to the system: as it stands, or as what its narrow form says. Every call of this family goes through
/// here.
inline wide_string system_name(any::path const & path) {
    any::string const full = path.full_string();
    return wide_calls ? wide_string(full) : platform::from_ansi(full.str(true));
}

} // namespace io
