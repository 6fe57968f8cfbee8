#include "socle/algorithm/crc.h"

#include "socle/basic/internal/byte_order.h"
#include "socle/platform/crc_blocks.h"

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

template <class Entry>
using slice_tables = std::array<std::array<Entry, 256>, slice_size>;

/// `slices[k][i]` is the state after byte i and k zero bytes, so that the bytes of a slice need not wait for each
/// other.
constexpr auto slices = [] {
    slice_tables<uint16> tables{};
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

/// The same for CRC-32, from its polynomial with the bits turned around.
constexpr auto slices_32 = [] {
    slice_tables<uint32> tables{};
    for (uint32 i = 0; i < 256; ++i) {
        uint32 state = i;
        for (int bit = 0; bit < 8; ++bit)
            state = state >> 1 ^ ((state & 1) != 0 ? 0xEDB88320 : 0);
        tables[0][i] = state;
    }
    for (uint32 k = 1; k < slice_size; ++k)
        for (uint32 i = 0; i < 256; ++i)
            tables[k][i] = tables[k - 1][i] >> 8 ^ tables[0][tables[k - 1][i] & 0xFF];
    return tables;
}();

constexpr uint32 step_32(uint32 state, unsigned char byte) { return state >> 8 ^ slices_32[0][(state ^ byte) & 0xFF]; }

uint32 slice_step_32(uint32 state, unsigned char const * bytes) {
    uint32 next = 0;
    for (uint32 i = 0; i < slice_size; ++i)
        next ^= slices_32[slice_size - 1 - i][bytes[i] ^ (i < 4 ? state >> 8 * i & 0xFF : 0)];
    return next;
}

constexpr platform::crc_factors factors = platform::crc_factors_of(16, 0x1021, false);
constexpr platform::crc_factors factors_32 = platform::crc_factors_of(32, 0x04C11DB7, true);

/// Below this, finding the way costs more than it saves.
constexpr std::size_t least_folded = 128;

/// Takes the bytes into the state, but for some at the end, of which there are at least `rest`. Returns how many.
template <class State, class Step>
std::size_t take_slices(uint32 & state, unsigned char const * bytes, std::size_t count, std::size_t rest,
                        platform::crc_factors const & by, Step slice) {
    std::size_t done = 0;
    auto const fold = count >= least_folded + rest ? platform::find_crc_folding() : nullptr;
    if (fold != nullptr) {
        unsigned char block[16] = {};
        basic::store(reinterpret_cast<char *>(block), static_cast<State>(state), !by.reflected);
        done = (count - rest) / sizeof block * sizeof block;
        fold(bytes, done, by, block);
        state = slice(slice(0, block), block + slice_size);
    }
    for (; count - done >= slice_size + rest; done += slice_size)
        state = slice(state, bytes + done);
    return done;
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
    for (auto at = take_slices<uint16>(running, bytes, count, 2, factors, slice_step); at < count; ++at)
        running = step(running, bytes[at]);
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

uint32 crc_32(unsigned char const * bytes, std::size_t count, uint32 before) {
    uint32 state = ~before;
    for (auto at = take_slices<uint32>(state, bytes, count, 0, factors_32, slice_step_32); at < count; ++at)
        state = step_32(state, bytes[at]);
    return ~state;
}

} // namespace algorithm::crc
