#include "socle/algorithm/crc.h"

namespace algorithm::crc {

constexpr std::array<uint32, 256> crc_table = [] {
    std::array<uint32, 256> table{};
    for (uint32 i = 0; i < 256; ++i) {
        uint32 r = i << 8;
        for (int bit = 0; bit < 8; ++bit)
            r = (r & 0x8000) != 0 ? (r << 1) ^ 0x1021 : r << 1;
        table[i] = r & 0xFFFF;
    }
    return table;
}();

namespace {

constexpr uint32 step(uint32 state, unsigned char byte) {
    return (state << 8) ^ crc_table[(byte ^ (state >> 8)) & 0xFF];
}

constexpr uint32 slice_size = 8;

/// `slices[k][i]` is the state after byte i and k zero bytes, so that the bytes of a slice need not wait for each
/// other.
constexpr auto slices = [] {
    std::array<std::array<uint16, 256>, slice_size> tables{};
    for (uint32 i = 0; i < 256; ++i) {
        uint32 state = crc_table[i];
        for (auto & table : tables) {
            table[i] = static_cast<uint16>(state);
            state = step(state, 0);
        }
    }
    return tables;
}();

/// `slice_size` steps at once, in the low 16 bits.
uint32 slice_step(uint32 state, unsigned char const * bytes) {
    uint32 next = slices[7][bytes[0] ^ (state >> 8 & 0xFF)] ^ slices[6][bytes[1] ^ (state & 0xFF)];
    for (uint32 i = 2; i < slice_size; ++i)
        next ^= slices[slice_size - 1 - i][bytes[i]];
    return next;
}

} // namespace

xmodem::~crc() = default;

void xmodem::reset() {
    state(0);
    finished_ = false;
}

void xmodem::update(unsigned char const * bytes, uint32 count) {
    uint32 running = state();
    // The last two bytes go in singly, so that the bits above the low 16 come out as with single bytes, too.
    for (; count >= slice_size + 2; bytes += slice_size, count -= slice_size)
        running = slice_step(running, bytes);
    for (; count > 0; ++bytes, --count)
        running = step(running, *bytes);
    state(running);
}

void xmodem::update(unsigned char byte) { state(step(state(), byte)); }

void xmodem::finish() {
    if (finished_)
        return;
    state(state() & 0xFFFF);
    result({static_cast<unsigned char>(state() >> 8), static_cast<unsigned char>(state())});
    finished_ = true;
}

} // namespace algorithm::crc
