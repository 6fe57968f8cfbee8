#pragma once

#include "socle/basic/types.h"

#include <string_view>

namespace platform {

/// Between 16-bit text and the ANSI page. What the page lacks becomes a question mark.
wide_string from_ansi(std::string_view bytes);
narrow_string to_ansi(std::u16string_view text);

} // namespace platform
