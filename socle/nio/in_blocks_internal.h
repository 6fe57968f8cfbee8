#pragma once

#include "socle/basic/types.h"

#include <algorithm>

namespace nio {

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

} // namespace nio
