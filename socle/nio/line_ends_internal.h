#pragma once

#include "socle/basic/internal/byte_order.h"

#include <bit>

namespace nio {

inline bool ends_line(char byte) { return byte == '\r' || byte == '\n'; }

/// The index of the first byte that ends a line, or `count`.
inline std::size_t find_line_end(char const * bytes, std::size_t count) {
    // Eight at a time: the high bit of each byte of (x - 1) & ~x tells whether x is zero there. Borrows can only raise
    // false alarms above a true one, where later bytes stand.
    auto const each = [](unsigned char value) { return value * (all_ones / 0xFF); };
    auto const zeros = [&](uint64 x) { return (x - each(1)) & ~x & each(0x80); };
    std::size_t at = 0;
    for (; at + 8 <= count; at += 8) {
        auto const word = basic::load<uint64>(bytes + at, false);
        if (uint64 const found = zeros(word ^ each('\r')) | zeros(word ^ each('\n')))
            return at + static_cast<std::size_t>(std::countr_zero(found)) / 8;
    }
    while (at < count && !ends_line(bytes[at]))
        ++at;
    return at;
}

} // namespace nio
