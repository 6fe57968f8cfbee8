#pragma once

#include "socle/nio/utf8.h"
#include "socle/platform/utf8_blocks.h"

/// `_utf8_encode` and `_utf8_decode` with the blocks to use; null for none.
namespace nio::utf8 {

void encode(wide_string const & text, narrow_string & out, platform::utf8_blocks const * blocks);
void decode(narrow_string const & bytes, wide_string & out, bool validate, platform::utf8_blocks const * blocks);

} // namespace nio::utf8
