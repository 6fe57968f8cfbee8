#include "nio/integer_codes.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace nio {

int hamming_weight(int64 value) { return std::popcount(static_cast<uint64>(value)); }

int64 read_wz(input & in) {
    uint64 value = 0;
    char byte = 0;
    while (in.read(&byte, 1) != 0) {
        auto const group = static_cast<unsigned char>(byte);
        value = value << 7 | (group & 0x7F);
        if ((group & 0x80) == 0)
            break;
    }
    return static_cast<int64>(value);
}

void write_wz(int64 value, output & out) {
    auto const bits = static_cast<uint64>(value);
    for (uint32 left = size_wz(value); left > 1; --left)
        out.write(static_cast<unsigned char>(0x80 | (bits >> 7 * (left - 1) & 0x7F)));
    out.write(static_cast<unsigned char>(bits & 0x7F));
}

uint32 size_wz(int64 value) {
    auto const width = std::bit_width(static_cast<uint64>(value) | 1);
    return static_cast<uint32>(width + 6) / 7;
}

namespace {

constexpr int bits_at_once = 24;

/// The bits that can be had with at most one byte from the source, the first one lowest, and how many there are.
struct bit_run {
    uint32 bits;
    int length;
};

bit_run next_bits(bit_input<1, 0, 1> & in) {
    if (!in.require(1))
        return {0, 0};
    int const length = std::min(in.count(), bits_at_once);
    return {static_cast<uint32>(in.peek(length)), length};
}

} // namespace

int64 read_p2(bit_input<1, 0, 1> & in) {
    uint64 weight = 1;
    for (;;) {
        auto const [bits, length] = next_bits(in);
        int const ones = std::min(std::countr_one(bits), length);
        weight += static_cast<uint64>(ones);
        in.drop(ones);
        if (ones < length || length == 0)
            break;
    }
    in.drop(1);

    uint64 x = 0;
    uint64 place = 0;
    while (weight > 0) {
        auto [bits, length] = next_bits(in);
        if (length == 0) {
            if (place >= 64) {
                // Only the count can still change: spare an ended source being asked for each of a hostile length.
                in.drop(static_cast<int>(std::min<uint64>(weight, std::numeric_limits<int>::max())));
                break;
            }
            // The missing bit counts as 1.
            bits = 1;
            length = 1;
        }
        auto ones = static_cast<uint64>(std::popcount(bits));
        if (ones >= weight) {
            // The code ends with its last 1: cut off what belongs to the next one.
            uint32 rest = bits;
            for (uint64 i = 1; i < weight; ++i)
                rest &= rest - 1;
            length = std::countr_zero(rest) + 1;
            bits &= ((1u << length) - 1);
            ones = weight;
        }
        if (place < 64)
            x |= uint64{bits} << place;
        in.drop(length);
        place += static_cast<uint64>(length);
        weight -= ones;
    }
    return static_cast<int64>(x - 1);
}

void write_p2(int64 value, bit_output<1, 0> & out) {
    uint64 const x = static_cast<uint64>(value) + 1;
    int const weight = std::popcount(x);
    out.put_bits(all_ones, weight - 1);
    out.put_bits(0, 1);
    out.put_bits(x, static_cast<int>(std::bit_width(x)));
}

} // namespace nio
