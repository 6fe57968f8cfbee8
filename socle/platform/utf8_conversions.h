#pragma once

#include "socle/basic/types.h"

namespace platform {

/// Strict UTF-8 as a code page: what is bad, and a lone surrogate on the way back, is U+FFFD. As with the system's
/// calls, a capacity of 0 only asks for the size, and 0 is the answer, with its code (122), if the result does not fit.
uint32 decode_utf8(char const * from, uint32 count, char16_t * to, uint32 capacity);
uint32 encode_utf8(char16_t const * from, uint32 count, char * to, uint32 capacity);

} // namespace platform
