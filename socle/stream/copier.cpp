#include "socle/stream/copier.h"

#include "socle/stream/lending_internal.h"

#include <algorithm>

namespace stream {

copier::copier(uint32 size) : buffer_(std::max<uint32>(size, 1)), buffer_size_(std::max<uint32>(size, 1)) {}

copier::~copier() = default;

uint64 copier::process(input & source, output & target, uint64 count) {
    target.mark();
    if (count == all_ones) {
        process(source, target);
        return target.drift();
    }
    uint32 wanted, moved;
    do {
        wanted = static_cast<uint32>(std::min<uint64>(count, buffer_size_));
        moved = move_block(source, target, wanted);
        count -= moved;
    } while (moved == wanted && count > 0);
    return target.drift();
}

uint64 copier::process(input & source, output & target) {
    target.mark();
    while (move_block(source, target, buffer_size_) > 0) {
    }
    return target.drift();
}

/// Reads once and writes what came, be it nothing.
uint32 copier::move_block(input & source, output & target, uint32 count) {
    // A block that lies in memory as a whole goes straight to a sink of the library.
    if (auto const held = lending::bytes(source);
        held.size() >= count && count > 0 && nio::lending::apart(target, held.first(count))) {
        lending::take(source, count);
        target.write(held.data(), count);
        return count;
    }
    auto * const block = reinterpret_cast<char *>(buffer_.data());
    uint32 const got = std::min(source.read(block, count), count);
    target.write(block, got);
    return got;
}

} // namespace stream
