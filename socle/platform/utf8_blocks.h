#pragma once

#include "socle/basic/types.h"

namespace platform {

/// Where a conversion came to in both texts.
template <class From, class To>
struct utf8_place {
    From const * from;
    To * to;
};

/// The parts of UTF-8 of single 16-bit units that go by vector instructions, many at once. Each converts whole
/// sequences as far as it comes, which may be nowhere: the ends of texts, and what needs to be looked at singly, is
/// left to the caller. None reads past `end`.
struct utf8_blocks {
    /// Encodes until `to` has reached `stop`, behind which it writes less than 64 bytes.
    utf8_place<char16_t, char> (*encode)(char16_t const * from, char16_t const * end, char * to, char const * stop);
    /// Decodes sequences of up to three bytes until `to` has reached `stop`, behind which it writes less than 32 units.
    /// With `validate` it stops before those that are overlong, surrogates, 0xFFFE or 0xFFFF.
    utf8_place<char, char16_t> (*decode)(char const * from, char const * end, char16_t * to, char16_t const * stop,
                                         bool validate);
};

/// Those for this machine, which is asked once; null if it lacks the instructions.
utf8_blocks const * find_utf8_blocks();

} // namespace platform
