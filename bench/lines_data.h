#pragma once

#include "socle/basic/types.h"

namespace bench {

/// Text of `size` bytes in lines of 40 to 80 characters, the last one cut.
inline narrow_string lines_of(uint32 size) {
    narrow_string lines;
    for (unsigned i = 0; lines.size() < size; ++i)
        lines += narrow_string(40 + i * 2654435761u % 41, static_cast<char>('a' + i % 26)) + "\n";
    lines.resize(size);
    return lines;
}

} // namespace bench
