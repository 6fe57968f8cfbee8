#include "socle/nio/integer_codes.h"

#include "socle/basic/internal/byte_order.h"
#include "socle/nio/lending_internal.h"

#include <bit>

namespace nio {

namespace {

constexpr uint32 longest_held = 9;
/// The bit of each byte that says that more follow.
constexpr uint64 more_flags = 0x8080'8080'8080'8080;

constexpr uint32 group_count(int64 value) {
    auto const width = std::bit_width(static_cast<uint64>(value) | 1);
    return static_cast<uint32>(width + 6) / 7;
}

/// Puts the low four bytes of a word into memory, the lowest first.
void store(char * to, uint64 word) { basic::store(to, static_cast<uint32>(word), false); }

/// Joins the low 7 bits of all bytes.
uint64 join_groups(uint64 word) {
    word = (word & 0x007F'007F'007F'007F) | (word >> 1 & 0x3F80'3F80'3F80'3F80);
    word = (word & 0x0000'3FFF'0000'3FFF) | (word >> 2 & 0x0FFF'C000'0FFF'C000);
    return (word & 0x0FFF'FFFF) | (word >> 4 & 0x00FF'FFFF'F000'0000);
}

/// The inverse, for values below 2^56.
uint64 part_groups(uint64 value) {
    value = (value & 0x0FFF'FFFF) | (value & 0x00FF'FFFF'F000'0000) << 4;
    value = (value & 0x0000'3FFF'0000'3FFF) | (value & 0x0FFF'C000'0FFF'C000) << 2;
    return (value & 0x007F'007F'007F'007F) | (value & 0x3F80'3F80'3F80'3F80) << 1;
}

/// Reads a code of up to nine bytes out of memory that has so many; gives its length, or 0.
uint32 read_held(std::span<char const> held, uint64 & value) {
    if (held.size() < longest_held)
        return 0;
    uint64 const word = basic::load<uint64>(held.data(), true);
    uint64 const last = ~word & more_flags;
    if (last == 0) {
        auto const ninth = static_cast<unsigned char>(held[8]);
        value = join_groups(word) << 7 | ninth;
        return ninth < 0x80 ? longest_held : 0;
    }
    int const before = std::countl_zero(last);
    value = join_groups(word >> (56 - before));
    return static_cast<uint32>(before / 8 + 1);
}

/// Stores exactly the `size` bytes, up to nine, of the code of `value`. Without a branch, as sizes are hard to foresee.
void write_held(uint64 value, uint32 size, char * to) {
    uint32 const ninth = size == longest_held;
    to[0] = static_cast<char>(value >> 56 | 0x80);
    to += ninth;
    size -= ninth;
    uint64 const code =
        basic::byte_swap((part_groups(value & 0x00FF'FFFF'FFFF'FFFF) | (more_flags ^ 0x80)) << (64 - 8 * size));
    for (uint32 const at : {uint32{0}, size / 2, size - 1})
        to[at] = static_cast<char>(code >> 8 * at);
    // From four bytes on, the first and the last four; they overlap, and fewer bytes have no place for them.
    char spare[4];
    char * const places[] = {spare, to};
    uint32 const wide = size >= sizeof spare;
    uint32 const tail = wide * (size - 4);
    store(places[wide], code);
    store(places[wide] + tail, code >> 8 * tail);
}

} // namespace

int64 read_wz(input & in) {
    uint64 value = 0;
    if (uint32 const size = read_held(lending::bytes(in), value); size != 0) {
        lending::take(in, size);
        return static_cast<int64>(value);
    }
    value = 0;
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
    uint32 const size = group_count(value);
    if (auto const room = lending::room(out); size <= longest_held && size <= room.size()) {
        write_held(bits, size, room.data());
        lending::use(out, size);
        return;
    }
    for (uint32 left = size; left > 1; --left)
        out.write(static_cast<unsigned char>(0x80 | (bits >> 7 * (left - 1) & 0x7F)));
    out.write(static_cast<unsigned char>(bits & 0x7F));
}

uint32 size_wz(int64 value) { return group_count(value); }

} // namespace nio
