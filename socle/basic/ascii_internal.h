#pragma once

#include "socle/basic/types.h"

#include <cstring>

/// ASCII, which is the same in bytes and in 16-bit units, in steps of several at once.
namespace basic::ascii {

/// How many bytes or units a step takes.
inline constexpr std::size_t step = 16;

/// Whether none of the next `step` bytes or units is above ASCII.
template <class Unit>
bool is_ascii(Unit const * from) {
    uint64 bits = 0;
    for (std::size_t i = 0; i < step * sizeof(Unit) / sizeof bits; ++i) {
        uint64 word;
        std::memcpy(&word, reinterpret_cast<char const *>(from) + i * sizeof word, sizeof word);
        bits |= word;
    }
    return (bits & (sizeof(Unit) == 1 ? 0x8080808080808080 : 0xFF80FF80FF80FF80)) == 0;
}

/// Copies `step` bytes or units of ASCII.
template <class From, class To>
void copy_ascii(From const * from, To * to) {
    To block[step]; // of its own, so that it can be made in one go
    for (std::size_t i = 0; i < step; ++i)
        block[i] = static_cast<To>(from[i]);
    std::memcpy(to, block, sizeof block);
}

} // namespace basic::ascii
