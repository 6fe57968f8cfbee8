/// The wz and the p2 code.

#include "socle/nio/integer_codes.h"
#include "fuzz/support/feed.h"
#include "socle/any/integers.h"
#include "socle/nio/buffered_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/memory_sources.h"

#include <bit>

namespace {

using fuzz::check;

/// As the contract tells it, from the bytes.
int64 plain_wz(byte_vector const & bytes, std::size_t & at) {
    uint64 value = 0;
    while (at < bytes.size()) {
        unsigned char const byte = bytes[at++];
        value = value << 7 | (byte & 0x7F);
        if (byte < 0x80)
            break;
    }
    return static_cast<int64>(value);
}

/// As the contract tells it, from the bits.
int64 plain_p2(byte_vector const & bytes, std::size_t & at) {
    auto const bit = [&] {
        std::size_t const place = at++;
        return place < 8 * bytes.size() ? bytes[place / 8] >> place % 8 & 1 : -1;
    };
    std::size_t ones = 1;
    while (bit() == 1)
        ++ones;
    uint64 x = 0;
    for (std::size_t place = 0; ones > 0; ++place) {
        int const next = bit();
        if (next == 0)
            continue;
        if (place < 64)
            x |= uint64(1) << place;
        --ones;
    }
    return static_cast<int64>(x - 1);
}

void decode(std::string_view input) {
    byte_vector const bytes = fuzz::vector_of(input);
    stream::vector_input memory(bytes);
    support::unlent plain(input);
    support::drops drops(input);
    std::size_t at = 0;
    while (at < bytes.size()) {
        int64 const expected = plain_wz(bytes, at);
        check(nio::read_wz(memory) == expected && memory.tell() == at);
        check(nio::read_wz(plain) == expected && plain.tell() == at);
        check(nio::read_wz(drops) == expected && drops.tell() == at);
    }
    check(nio::read_wz(memory) == 0);

    stream::vector_input bit_memory(bytes);
    support::drops bit_plain(input);
    stream::binary_input fast(bit_memory), slow(bit_plain);
    for (at = 0; at < 8 * bytes.size();) {
        int64 const expected = plain_p2(bytes, at);
        check(any::read(fast) == expected && any::read(slow) == expected);
    }
}

void encode(std::string_view input) {
    byte_vector wz, lent, p2;
    stream::vector_output wz_out(wz), lent_target(lent), p2_out(p2);
    nio::buffered_output lent_out(lent_target, 16); // has room for some numbers, but not for all
    stream::binary_output bits(p2_out);
    std::vector<int64> values;
    for (fuzz::feed in(input); !in.empty();) {
        // Of all magnitudes.
        values.push_back(static_cast<int64>(in.long_number() >> in.below(64)));
        std::size_t const before = wz.size();
        nio::write_wz(values.back(), wz_out);
        nio::write_wz(values.back(), lent_out);
        check(wz.size() - before == nio::size_wz(values.back()));
        check(nio::hamming_weight(values.back()) == std::popcount(static_cast<uint64>(values.back())));
        if (values.back() != -1)
            any::write(values.back(), bits);
    }
    bits.bits().finish();
    lent_out.flush();
    check(lent == wz);
    stream::vector_input wz_in(wz), p2_in(p2);
    stream::binary_input back(p2_in);
    for (int64 const value : values) {
        check(nio::read_wz(wz_in) == value);
        check(value == -1 || any::read(back) == value);
    }
    check(wz_in.tell() == wz.size() && p2_in.tell() == p2.size());
}

} // namespace

void fuzz::run(std::string_view input) {
    decode(input);
    encode(input);
}
