#pragma once

#include "socle/basic/types.h"

#include <algorithm>
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

/// Calls `act(data, count)` for the whole of `size` bytes: once, unless they are more than a count of 32 bits tells.
template <class Act>
void in_blocks(char const * data, uint64 size, Act act) {
    do {
        auto const count = static_cast<uint32>(std::min<uint64>(size, UINT32_MAX));
        act(data, count);
        data += count;
        size -= count;
    } while (size > 0);
}

} // namespace stream
