#pragma once

#include "socle/basic/types.h"

#include <string_view>

namespace platform {

/// From the ANSI page to 16-bit text.
using ansi_decoder = wide_string(std::string_view);

/// The target of a shell link whose bytes are `link`. False if it has none, or if any length or offset in it is wrong:
/// the link must be whole, up to the block that ends it.
bool read_shell_link(std::string_view link, ansi_decoder * from_ansi, wide_string & target);

} // namespace platform
