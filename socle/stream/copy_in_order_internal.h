#pragma once

#include "socle/basic/types.h"

#include <cstddef>
#include <cstring>
#include <functional>

namespace stream {

/// Copies `count` bytes with the result of a loop from the first byte to the last, also where the blocks overlap.
inline void copy_in_order(char * to, char const * from, std::size_t count) {
    std::less<char const *> const before;
    if (before(from, to) && before(to, from + count))
        for (std::size_t i = 0; i < count; ++i)
            to[i] = from[i];
    else if (count > 0)
        std::memmove(to, from, count);
}

} // namespace stream
