#include "socle/nio/integer_codes.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace nio {

namespace {

constexpr uint64 each_byte = 0x0101'0101'0101'0101;

/// Byte i is the number of 1 bits in bytes 0 to i of `bits`.
constexpr uint64 running_weights(uint64 bits) {
    bits -= bits >> 1 & 0x5555'5555'5555'5555;
    bits = (bits & 0x3333'3333'3333'3333) + (bits >> 2 & 0x3333'3333'3333'3333);
    bits = (bits + (bits >> 4)) & 0x0F0F'0F0F'0F0F'0F0F;
    return bits * each_byte;
}

constexpr int last_weight(uint64 running) { return static_cast<int>(running >> 56); }

/// Eight times the number of the first byte in `running` that is not below `weight`; there has to be one.
int first_reaching(uint64 running, int weight) {
    uint64 const reached = ((running | 0x80 * each_byte) - static_cast<uint64>(weight) * each_byte) & 0x80 * each_byte;
    return std::countr_zero(reached) - 7;
}

/// How many bits of `bits` go up to its 1 bit of number `weight`, counted from 1. `running` belongs to `bits`.
int length_of_weight(uint64 bits, uint64 running, int weight) {
    int const byte = first_reaching(running, weight);
    weight -= static_cast<int>((running << 8) >> byte & 0xFF);
    // The same for single bits: each in a byte of its own.
    uint64 const spread = (bits >> byte & 0xFF) * each_byte & 0x8040'2010'0804'0201;
    uint64 const ones = (spread + 0x7F * each_byte) >> 7 & each_byte;
    return byte + first_reaching(ones * each_byte, weight) / 8 + 1;
}

} // namespace

class p2_code {
public:
    static int64 read(bit_input<1, 0, 1> & in);
};

int hamming_weight(int64 value) { return last_weight(running_weights(static_cast<uint64>(value))); }

int64 read_p2(bit_input<1, 0, 1> & in) { return p2_code::read(in); }

int64 p2_code::read(bit_input<1, 0, 1> & in) {
    uint64 weight = 1;
    for (;;) {
        auto const [bits, length] = in.ahead();
        int const ones = std::min(std::countr_one(bits), length);
        weight += static_cast<uint64>(ones);
        in.pass(ones);
        if (ones < length || length == 0)
            break;
    }
    in.drop(1);

    uint64 x = 0;
    uint64 place = 0;
    while (weight > 0) {
        auto [bits, length] = in.ahead();
        if (length == 0) {
            if (place >= 64) {
                // Only the count can still change: spare an ended source being asked for each of a hostile length.
                in.drop(static_cast<int>(std::min<uint64>(weight, std::numeric_limits<int>::max())));
                break;
            }
            // The missing bit counts as 1.
            x |= uint64{1} << place++;
            --weight;
            in.drop(1);
            continue;
        }
        uint64 const running = running_weights(bits);
        auto ones = static_cast<uint64>(last_weight(running));
        if (ones >= weight) {
            // The code ends with its last 1: cut off what belongs to the next one.
            length = length_of_weight(bits, running, static_cast<int>(weight));
            bits &= all_ones >> (64 - length);
            ones = weight;
        }
        if (place < 64)
            x |= bits << place;
        in.pass(length);
        place += static_cast<uint64>(length);
        weight -= ones;
    }
    return static_cast<int64>(x - 1);
}

void write_p2(int64 value, bit_output<1, 0> & out) {
    uint64 const x = static_cast<uint64>(value) + 1;
    int const weight = hamming_weight(static_cast<int64>(x));
    auto const length = static_cast<int>(std::bit_width(x));
    if (weight > 0)
        out.put_bits((uint64{1} << (weight - 1)) - 1, weight);
    else
        out.put_bits(0, 1);
    out.put_bits(x, length);
}

} // namespace nio
