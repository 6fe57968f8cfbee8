#include "socle/stream/endian_input.h"

#include "socle/stream/lending_internal.h"

#include <algorithm>
#include <typeinfo>

namespace stream {

namespace {

/// Where the byte that comes `index`-th stands in a value of `width` bytes.
int shift_of(int index, int width, bool big) { return 8 * (big ? width - 1 - index : index); }

template <int width>
uint64 joined(char const * bytes, bool big) {
    uint64 value = 0;
    for (int i = 0; i < width; ++i)
        value |= uint64(static_cast<unsigned char>(bytes[i])) << shift_of(i, width, big);
    return value;
}

/// The value from one block read. A byte that does not come sets every bit from its place upward in its word of 32
/// bits, as `single_bytes` has it: where the high byte is the first, the whole word.
template <int width>
uint64 block(input & in, bool big) {
    char bytes[width];
    uint32 const got = in.read(bytes, width);
    if (got < width)
        std::fill(bytes + (big ? got / 4 * 4 : got), bytes + width, '\xFF');
    return joined<width>(bytes, big);
}

/// The value byte by byte, where -1 is joined like a byte.
template <int width>
uint64 single_bytes(input & in, bool big) {
    if constexpr (width == 8) {
        uint64 const first = single_bytes<4>(in, big);
        uint64 const second = single_bytes<4>(in, big);
        return big ? first << 32 | second : second << 32 | first;
    } else {
        uint32 value = 0;
        for (int i = 0; i < width; ++i)
            value |= static_cast<uint32>(in.read()) << shift_of(i, width, big);
        return value;
    }
}

/// The next `width` bytes as a value: at once if they are in memory beneath a reader whose reads nobody has overridden,
/// in one block if the order is the host's, and byte by byte otherwise.
template <int width>
uint64 value(endian_input & in, input * lender, bool big, bool host_big) {
    if (lender) {
        auto const held = lending::bytes(*lender);
        if (held.size() >= width) {
            uint64 const value = joined<width>(held.data(), big);
            lending::take(*lender, width);
            return value;
        }
    }
    return big == host_big ? block<width>(in, big) : single_bytes<width>(in, big);
}

} // namespace

endian_input::endian_input(input & stream) : direct_input(stream), host_big_endian_(!basic::is_foreign_order(true)) {}

endian_input::~endian_input() = default;

/// The slow path, which finds out whether the other may be taken.
uint64 endian_input::read_on(uint32 width, bool big) {
    own_.known = typeid(*this) == (big ? typeid(big_endian_input) : typeid(little_endian_input));
    input * const lender = own_.known ? underlying() : nullptr;
    switch (width) {
    case 2: return value<2>(*this, lender, big, host_big_endian());
    case 3: return value<3>(*this, lender, big, host_big_endian());
    case 4: return value<4>(*this, lender, big, host_big_endian());
    default: return value<8>(*this, lender, big, host_big_endian());
    }
}

unsigned char endian_input::read8() { return static_cast<unsigned char>(read()); }

big_endian_input::big_endian_input(input & stream) : endian_input(stream) {}

big_endian_input::~big_endian_input() = default;

uint32 big_endian_input::read24() { return static_cast<uint32>(read_on(3, true)); }

bool big_endian_input::_ours() const { return typeid(*this) == typeid(big_endian_input); }

little_endian_input::little_endian_input(input & stream) : endian_input(stream) {}

little_endian_input::~little_endian_input() = default;

uint32 little_endian_input::read24() { return static_cast<uint32>(read_on(3, false)); }

bool little_endian_input::_ours() const { return typeid(*this) == typeid(little_endian_input); }

} // namespace stream
