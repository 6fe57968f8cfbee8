#pragma once

#include "socle/basic/byte_blocks_internal.h"

namespace nio {

inline bool ends_line(char byte) { return byte == '\r' || byte == '\n'; }

/// The index of the first byte that ends a line, or `count`.
inline std::size_t find_line_end(char const * bytes, std::size_t count) {
    return basic::find_either(bytes, count, '\r', '\n');
}

} // namespace nio
