#include "socle/nio/blocks.h"

#include <algorithm>
#include <memory>

namespace nio {

uint64 copy(input & from, output & to, uint64 count, uint32 buffer_size) {
    if (count == 0)
        return 0;
    auto const size = static_cast<uint32>(std::min<uint64>(count, std::max<uint32>(buffer_size, 1)));
    auto const block = std::make_unique_for_overwrite<char[]>(size);
    uint64 total = 0;
    while (total < count) {
        auto const wanted = static_cast<uint32>(std::min<uint64>(count - total, size));
        // A source that claims more than it was asked for must not make us write from beyond the block.
        uint32 const got = std::min(from.read(block.get(), wanted), wanted);
        to.write(block.get(), got);
        total += got;
        if (got < wanted)
            break;
    }
    return total;
}

uint64 skip(input & from, uint64 count, uint32 buffer_size) {
    infinite_output nowhere;
    return copy(from, nowhere, count, buffer_size);
}

void fill(output & to, uint64 count, char value, uint32 buffer_size) {
    infinite_input source(value);
    copy(source, to, count, buffer_size);
}

} // namespace nio
