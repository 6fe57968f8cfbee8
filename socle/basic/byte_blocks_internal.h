#pragma once

#include "socle/basic/internal/byte_order.h"

namespace basic {

/// Sixteen bytes that are worked on at once, by vector instructions where the machine has any.
typedef unsigned char byte_block __attribute__((vector_size(16)));
typedef uint16 block_of_16 __attribute__((vector_size(16)));
typedef uint32 block_of_32 __attribute__((vector_size(16)));
typedef uint64 block_of_64 __attribute__((vector_size(16)));
typedef unsigned char half_byte_block __attribute__((vector_size(8)));
typedef uint16 half_block_of_16 __attribute__((vector_size(8)));

/// Whether a comparison holds for all numbers of a block.
template <class Comparison>
bool all_of(Comparison const & holds) {
    char lanes[sizeof holds];
    std::memcpy(lanes, &holds, sizeof lanes);
    return (load<uint64>(lanes, false) & load<uint64>(lanes + 8, false)) == ~uint64();
}

/// The index of the first byte that is `a` or `b`, or `count`.
inline std::size_t find_either(char const * bytes, std::size_t count, char a, char b) {
    std::size_t at = 0;
    for (; count - at >= sizeof(byte_block); at += sizeof(byte_block)) {
        byte_block block;
        std::memcpy(&block, bytes + at, sizeof block);
        auto const equal = (block == static_cast<unsigned char>(a)) | (block == static_cast<unsigned char>(b));
        char found[sizeof equal];
        std::memcpy(found, &equal, sizeof equal);
        if (auto const first = load<uint64>(found, false))
            return at + static_cast<std::size_t>(std::countr_zero(first)) / 8;
        if (auto const second = load<uint64>(found + 8, false))
            return at + 8 + static_cast<std::size_t>(std::countr_zero(second)) / 8;
    }
    while (at < count && bytes[at] != a && bytes[at] != b)
        ++at;
    return at;
}

/// Copies `count` integers, and turns the bytes of each around. The places may have any address and must not overlap.
template <class Value>
void copy_swapped(void * to, void const * from, std::size_t count) {
    auto * target = static_cast<char *>(to);
    auto const * source = static_cast<char const *>(from);
    constexpr std::size_t step = sizeof(byte_block) / sizeof(Value);
    for (; count >= step; count -= step) {
        block_of_16 halves;
        std::memcpy(&halves, source, sizeof halves);
        auto block = reinterpret_cast<block_of_64>(halves << 8 | halves >> 8);
        if constexpr (sizeof(Value) >= 4) {
            auto const words = reinterpret_cast<block_of_32>(block);
            block = reinterpret_cast<block_of_64>(words << 16 | words >> 16);
        }
        if constexpr (sizeof(Value) == 8)
            block = block << 32 | block >> 32;
        std::memcpy(target, &block, sizeof block);
        source += sizeof block;
        target += sizeof block;
    }
    for (; count > 0; --count) {
        store(target, byte_swap(load<Value>(source, false)), false);
        source += sizeof(Value);
        target += sizeof(Value);
    }
}

} // namespace basic
