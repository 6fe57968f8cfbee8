#pragma once

#include "basic/types.h"

#include <bit>
#include <cstring>

namespace nio {

/// The same word with its bytes in reverse order.
constexpr uint64 reversed(uint64 word) {
    word = (word & 0x00FF'00FF'00FF'00FF) << 8 | (word >> 8 & 0x00FF'00FF'00FF'00FF);
    word = (word & 0x0000'FFFF'0000'FFFF) << 16 | (word >> 16 & 0x0000'FFFF'0000'FFFF);
    return word << 32 | word >> 32;
}

/// Eight bytes of memory as a word, the first one lowest.
inline uint64 load_low_first(char const * from) {
    uint64 word = 0;
    std::memcpy(&word, from, sizeof word);
    return std::endian::native == std::endian::big ? reversed(word) : word;
}

} // namespace nio
