/// The wz and the p2 code.

#include "socle/nio/integer_codes.h"
#include "fuzz/support/chains.h"
#include "fuzz/support/feed.h"
#include "socle/any/integers.h"
#include "socle/nio/buffered_output.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/memory_sources.h"

#include <bit>

namespace {

using fuzz::check;
using bit_input = nio::bit_input<1, 0, 1>;
using bit_output = nio::bit_output<1, 0>;

/// Both codes as the contract tells them, from the same bytes.
class plain_codes {
public:
    explicit plain_codes(std::string_view bytes) : bytes_(bytes) {}

    uint64 at() const { return at_; }
    int count() const { return count_; }

    int64 wz() {
        uint64 value = 0;
        while (at_ < bytes_.size()) {
            auto const byte = static_cast<unsigned char>(bytes_[at_++]);
            value = value << 7 | (byte & 0x7F);
            if (byte < 0x80)
                break;
        }
        return static_cast<int64>(value);
    }
    int64 p2() {
        std::size_t ones = 1;
        while (bit() == 1)
            ++ones;
        uint64 x = 0;
        for (std::size_t place = 0; ones > 0; ++place) {
            if (bit() == 0)
                continue;
            if (place < 64)
                x |= uint64(1) << place;
            --ones;
        }
        return static_cast<int64>(x - 1);
    }
    int peek(int n) {
        while (count_ < n && at_ < bytes_.size()) {
            held_ |= uint64(static_cast<unsigned char>(bytes_[at_++])) << count_;
            count_ += 8;
        }
        return count_ < n ? -1 : static_cast<int>(held_ & ((1u << n) - 1));
    }

private:
    int bit() {
        int const first = peek(1);
        held_ >>= 1;
        --count_;
        return first;
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
    uint64 held_ = 0;
    int count_ = 0; // below 0 by the bits that were missing
};

/// Both in turn from one stream, of which the first bytes were given back to it.
void decode(std::string_view input) {
    fuzz::feed in(input);
    narrow_string const given_back = in.text();
    auto const data = in.rest();
    auto const back = static_cast<uint32>(given_back.size());
    narrow_string const all = given_back + narrow_string(data);
    stream::array_input memory(data);
    support::unlent plain(data);
    support::drops drops(data);
    stream::input * const sources[] = {&memory, &plain, &drops};
    for (auto * source : sources)
        source->unread(given_back.data(), back);
    bit_input readers[] = {bit_input(memory), bit_input(plain), bit_input(drops)};
    plain_codes model(all);
    for (std::size_t turn = 0; model.at() < all.size(); ++turn) {
        auto const choice = (static_cast<unsigned char>(all[turn % all.size()]) + turn) % 16;
        auto const read = [&](nio::input & source, bit_input & bits) -> int64 {
            return choice == 0 ? bits.peek(20) : choice < 8 ? nio::read_wz(source) : nio::read_p2(bits);
        };
        int64 const expected = choice == 0 ? model.peek(20) : choice < 8 ? model.wz() : model.p2();
        for (std::size_t i = 0; i < std::size(sources); ++i) {
            check(read(*sources[i], readers[i]) == expected);
            check(sources[i]->tell() == model.at() - back && readers[i].count() == model.count());
        }
    }
    check(nio::read_wz(memory) == 0);
}

void encode(std::string_view input) {
    byte_vector wz, lent, p2;
    stream::vector_output wz_out(wz), lent_target(lent), p2_out(p2);
    nio::buffered_output lent_out(lent_target, 16); // has room for some numbers, but not for all
    bit_output bits(p2_out);
    std::vector<int64> values;
    std::size_t p2_length = 0;
    for (fuzz::feed in(input); !in.empty();) {
        // Of all magnitudes.
        values.push_back(static_cast<int64>(in.long_number() >> in.below(64)));
        auto const value = static_cast<uint64>(values.back());
        std::size_t const before = wz.size();
        nio::write_wz(values.back(), wz_out);
        nio::write_wz(values.back(), lent_out);
        check(wz.size() - before == (static_cast<std::size_t>(std::bit_width(value | 1)) + 6) / 7);
        check(wz.size() - before == nio::size_wz(values.back()));
        check(nio::hamming_weight(values.back()) == std::popcount(value));
        if (value == all_ones)
            continue;
        nio::write_p2(values.back(), bits);
        p2_length +=
            static_cast<std::size_t>(std::popcount(value + 1)) + static_cast<std::size_t>(std::bit_width(value + 1));
    }
    bits.finish();
    lent_out.flush();
    check(lent == wz && p2.size() == (p2_length + 7) / 8);
    stream::vector_input wz_in(wz), p2_in(p2);
    stream::binary_input back(p2_in); // the same code, under the name that hides the bits
    for (int64 const value : values) {
        check(nio::read_wz(wz_in) == value);
        check(value == -1 || any::read(back) == value);
    }
    check(wz_in.tell() == wz.size() && p2_in.tell() == p2.size());
}

/// Both in turn into room that may be too small, lent or not.
void overflow(std::string_view input) {
    fuzz::feed in(input);
    narrow_string lent(in.below(100), '.'), single = lent;
    stream::array_output out(lent.data(), static_cast<uint32>(lent.size()));
    fuzz::callers<stream::array_output> single_out(single.data(), static_cast<uint32>(single.size()));
    bit_output bits(out), single_bits(single_out);
    while (!in.empty()) {
        auto const choice = in.byte();
        auto const value = static_cast<int64>(in.long_number() >> choice % 64);
        auto const write = [&](nio::output & to, bit_output & bits_to) {
            choice < 64 ? nio::write_wz(value, to) : nio::write_p2(value, bits_to);
        };
        check(fuzz::refuses<stream::exception>([&] { write(out, bits); })
              == fuzz::refuses<stream::exception>([&] { write(single_out, single_bits); }));
        check(out.tell() == single_out.tell() && bits.count() == single_bits.count() && lent == single);
    }
}

} // namespace

void fuzz::run(std::string_view input) {
    decode(input);
    encode(input);
    overflow(input);
}
