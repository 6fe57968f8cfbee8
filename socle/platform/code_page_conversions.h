#pragma once

#include "socle/platform/code_page_tables.h"

/// Conversions of `count` elements, at least one. As with the system's calls, a capacity of 0 only asks
/// for the size, and 0 is the answer, with its code (122), if the result does not fit.
namespace platform {

uint32 decode(code_page const & page, char const * from, uint32 count, char16_t * to, uint32 capacity);

/// `default_character` stands for units that the page lacks; `used_default` tells whether there was one.
uint32 encode(code_page const & page, char16_t const * from, uint32 count, char * to, uint32 capacity,
              char default_character, bool & used_default);

} // namespace platform
