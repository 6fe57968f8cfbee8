#include "stream/endian_input.h"

#include "nio/lending_internal.h"
#include "stream/host_order_internal.h"

#include <typeinfo>

namespace stream {

namespace {

/// Where the byte that comes `index`-th stands in a value of `width` bytes.
int shift_of(int index, int width, bool big) { return 8 * (big ? width - 1 - index : index); }

/// A value whose bytes are all in memory already.
template <int width>
bool lent_value(input & in, bool big, uint64 & value) {
    auto const held = nio::lending::bytes(in);
    if (held.size() < width)
        return false;
    value = 0;
    for (int i = 0; i < width; ++i)
        value |= uint64(static_cast<unsigned char>(held[std::size_t(i)])) << shift_of(i, width, big);
    nio::lending::take(in, width);
    return true;
}

/// The value from one block read; a byte that does not come is 0xFF.
template <int width>
uint64 block_value(input & in, bool big) {
    unsigned char bytes[width];
    int const got = static_cast<int>(in.read(reinterpret_cast<char *>(bytes), width));
    uint64 value = 0;
    for (int i = 0; i < width; ++i)
        value |= uint64(i < got ? bytes[i] : 0xFF) << shift_of(i, width, big);
    return value;
}

/// The value byte by byte, where -1 is joined like a byte.
template <int width>
uint64 joined_value(input & in, bool big) {
    if constexpr (width == 8) {
        uint64 const first = joined_value<4>(in, big);
        uint64 const second = joined_value<4>(in, big);
        return big ? first << 32 | second : second << 32 | first;
    } else {
        uint32 value = 0;
        for (int i = 0; i < width; ++i)
            value |= static_cast<uint32>(in.read()) << shift_of(i, width, big);
        return value;
    }
}

template <int width>
uint64 value_from(input & in, bool big, bool host_big) {
    uint64 value;
    if (lent_value<width>(in, big, value))
        return value;
    return big == host_big ? block_value<width>(in, big) : joined_value<width>(in, big);
}

} // namespace

endian_input::endian_input(input & stream) : direct_input(stream), host_big_endian_(is_host_big_endian()) {}

endian_input::~endian_input() = default;

unsigned char endian_input::read8() { return static_cast<unsigned char>(read()); }

big_endian_input::big_endian_input(input & stream) : endian_input(stream) {}

big_endian_input::~big_endian_input() = default;

uint16 big_endian_input::read16() { return static_cast<uint16>(value_from<2>(*this, true, host_big_endian())); }

uint32 big_endian_input::read24() { return static_cast<uint32>(value_from<3>(*this, true, host_big_endian())); }

uint32 big_endian_input::read32() { return static_cast<uint32>(value_from<4>(*this, true, host_big_endian())); }

uint64 big_endian_input::read64() { return value_from<8>(*this, true, host_big_endian()); }

bool big_endian_input::_ours() const { return typeid(*this) == typeid(big_endian_input); }

little_endian_input::little_endian_input(input & stream) : endian_input(stream) {}

little_endian_input::~little_endian_input() = default;

uint16 little_endian_input::read16() { return static_cast<uint16>(value_from<2>(*this, false, host_big_endian())); }

uint32 little_endian_input::read24() { return static_cast<uint32>(value_from<3>(*this, false, host_big_endian())); }

uint32 little_endian_input::read32() { return static_cast<uint32>(value_from<4>(*this, false, host_big_endian())); }

uint64 little_endian_input::read64() { return value_from<8>(*this, false, host_big_endian()); }

bool little_endian_input::_ours() const { return typeid(*this) == typeid(little_endian_input); }

} // namespace stream
