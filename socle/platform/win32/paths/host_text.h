#pragma once

#include "socle/basic/types.h"

#include <string_view>

/// Between the system's text and its UTF-8, which programs of the host's own world take. A lone surrogate is three
/// bytes there, so that every name comes back as it was.
namespace platform::win32 {

/// What is no UTF-8, not even such, becomes U+FFFD.
wide_string from_utf8(std::string_view bytes);
narrow_string to_utf8(std::u16string_view text);

} // namespace platform::win32
