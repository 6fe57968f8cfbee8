#pragma once

#include "socle/basic/types.h"

namespace nio {

/// Makes all missing directories above `path`, from the top down. Each is tried under its normalized name too, as by
/// `directory::create`, and "cannot create" may come from that; a failure under a normal name is passed over.
void create_parents(wide_string const & path);

/// A path in `directory` whose last part is made from the clock.
wide_string temp_path(wide_string const & directory);

} // namespace nio
