#include "socle/algorithm/crc.h"
#include "socle/basic/byte_blocks_internal.h"
#include "socle/nio/utf8_internal.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/integers.h"
#include "socle/stream/line_input.h"
#include "tests/support/system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <vector>

/// What takes many bytes at once, in windows of every size that end where memory does.
namespace {

std::size_t const most = 100;

TEST(edges, find_a_byte) {
    support::guarded_memory memory;
    for (std::size_t size = 0; size <= most; ++size)
        for (std::size_t end = 0; end <= size; ++end) {
            auto const window = memory.last(size);
            std::ranges::fill(window, '\x0B');
            if (end < size)
                window[end] = end % 2 == 0 ? '\r' : '\n';
            EXPECT_EQ(basic::find_either(window.data(), size, '\r', '\n'), end) << size;
        }
}

/// Bit by bit.
uint32 plain_crc_16(uint32 state, std::span<char const> bytes) {
    for (char const byte : bytes) {
        state ^= static_cast<uint32>(static_cast<unsigned char>(byte)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            state = ((state & 0x8000) != 0 ? state << 1 ^ 0x1021 : state << 1) & 0xFFFF;
    }
    return state;
}

uint32 plain_crc_32(uint32 before, std::span<char const> bytes) {
    uint32 state = ~before;
    for (char const byte : bytes) {
        state ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            state = (state & 1) != 0 ? state >> 1 ^ 0xEDB88320 : state >> 1;
    }
    return ~state;
}

TEST(edges, cyclic_redundancy_checks) {
    support::guarded_memory memory;
    algorithm::crc::xmodem crc;
    uint32 noise = 1;
    for (std::size_t size = 0; size <= 300; ++size)
        for (std::size_t behind = 0; behind < 16; ++behind) {
            // At each alignment, and up to the end of memory.
            auto const bytes = memory.last(size + behind).first(size);
            std::ranges::generate(bytes, [&] { return static_cast<char>((noise = noise * 69069 + 5) >> 24); });
            auto const * const data = reinterpret_cast<unsigned char const *>(bytes.data());
            crc.reset();
            crc.update(reinterpret_cast<unsigned char const *>(&noise), 2); // to begin from any state
            uint32 const begun = crc.state();
            crc.update(data, static_cast<uint32>(size));
            EXPECT_EQ(crc.state() & 0xFFFF, plain_crc_16(begun & 0xFFFF, bytes)) << size << ' ' << behind;
            EXPECT_EQ(algorithm::crc::crc_32(data, size, noise), plain_crc_32(noise, bytes)) << size << ' ' << behind;
        }
}

TEST(edges, cut_lines) {
    support::guarded_memory source, target;
    for (std::size_t size = 1; size <= most; ++size) {
        auto const bytes = source.last(size), line = target.last(size + 1);
        std::ranges::fill(bytes, 'x');
        stream::array_input memory(bytes.data(), static_cast<uint32>(size));
        stream::line_input in(memory);
        EXPECT_EQ(in.read_line(line.data(), static_cast<uint32>(line.size())), size);
        EXPECT_EQ(in.read_line(line.data(), static_cast<uint32>(line.size())), 0xFFFFFFFF);
    }
}

template <class Value>
void move_integers() {
    support::guarded_memory source, target;
    for (std::size_t count = 0; count <= most; ++count) {
        auto const bytes = source.last(count * sizeof(Value)), moved = target.last(bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<char>(i * 37);
        stream::array_input from(bytes.data(), static_cast<uint32>(bytes.size()));
        stream::array_output to(moved.data(), static_cast<uint32>(bytes.size()));
        stream::big_endian_input in(from);
        stream::little_endian_output out(to);
        std::vector<Value> values(count);
        stream::read_integers(in, values);
        stream::write_integers(out, std::span<Value const>(values));
        for (std::size_t i = 0; i < bytes.size(); i += sizeof(Value))
            for (std::size_t k = 0; k < sizeof(Value); ++k)
                EXPECT_EQ(bytes[i + k], moved[i + sizeof(Value) - 1 - k]);
    }
}

TEST(edges, move_integers) {
    move_integers<uint16>();
    move_integers<uint32>();
    move_integers<uint64>();
}

/// Text of every kind of sequence, some of them cut, overlong or of what is no character, from a place on.
narrow_string mixed(std::size_t start, std::size_t size) {
    narrow_string const parts =
        "plain text \xC3\xA9\xC2\x80\xDF\xBF\xE0\xA0\x80\xE5\x90\xBE\xE8\xBC\xA9\xEF\xBF\xBD of many "
        "bytes\xE3\x81\xAF\xE7\x8C\xAB\xE3\x81\xA7\xE3\x81\x82\xE3\x82\x8B\xC3\xBC\xC3\xB6 \xED\xA0\x80\xC1\xBF"
        " more\xE0\x9F\xBF plain text\xEF\xBF\xBE, and \xF0\x9F\x98\x80 so on\xE2\x82 and on\x80\xBF\xFF";
    narrow_string text;
    while (text.size() < start + size)
        text += parts;
    return text.substr(start, size);
}

TEST(edges, decode_utf8) {
    auto const * const blocks = platform::find_utf8_blocks();
    support::guarded_memory memory;
    for (std::size_t size = 0; blocks && size <= most; ++size)
        for (std::size_t start = 0; start < most; ++start) {
            narrow_string const bytes = mixed(start, size);
            auto const window = memory.last(size);
            std::ranges::copy(bytes, window.begin());
            for (bool const validate : {false, true}) {
                wide_string expected, rest, units(size + 32, u' ');
                auto const [from, to] =
                    blocks->decode(window.data(), window.data() + size, units.data(), units.data() + size, validate);
                units.resize(static_cast<std::size_t>(to - units.data()));
                nio::utf8::decode(bytes.substr(static_cast<std::size_t>(from - window.data())), rest, validate,
                                  nullptr);
                nio::utf8::decode(bytes, expected, validate, nullptr);
                EXPECT_EQ(units + rest, expected) << start << ' ' << size;
            }
        }
}

TEST(edges, encode_utf8) {
    auto const * const blocks = platform::find_utf8_blocks();
    support::guarded_memory memory;
    wide_string all;
    nio::utf8::decode(mixed(0, 4 * most), all, false, nullptr);
    for (std::size_t size = 0; blocks && size <= most; ++size)
        for (std::size_t start = 0; start < most; ++start) {
            wide_string const units = all.substr(start, size);
            auto * const window = reinterpret_cast<char16_t *>(memory.last(size * sizeof units[0]).data());
            std::ranges::copy(units, window);
            narrow_string expected, rest, bytes(3 * size + 64, ' ');
            auto const [from, to] = blocks->encode(window, window + size, bytes.data(), bytes.data() + 3 * size);
            bytes.resize(static_cast<std::size_t>(to - bytes.data()));
            nio::utf8::encode(units.substr(static_cast<std::size_t>(from - window)), rest, nullptr);
            nio::utf8::encode(units, expected, nullptr);
            EXPECT_EQ(bytes + rest, expected) << start << ' ' << size;
        }
}

} // namespace
