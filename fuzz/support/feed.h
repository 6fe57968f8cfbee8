#pragma once

#include "socle/basic/types.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// What every target is made of. A target defines `run`.
namespace fuzz {

/// One input. It must not depend on any other, and must not leave anything behind.
void run(std::string_view input);

/// Ends the program where a promise is broken.
inline void check(bool kept, char const * file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (kept)
        return;
    std::fprintf(stderr, "%s:%d: a promise is broken\n", file, line);
    std::abort();
}

/// The input of a target, taken apart from the front. At its end every number is 0 and every text empty.
class feed {
public:
    explicit feed(std::string_view input) : left_(input) {}

    bool empty() const { return left_.empty(); }

    unsigned char byte() {
        auto const taken = bytes(1);
        return taken.empty() ? 0 : static_cast<unsigned char>(taken[0]);
    }

    bool flag() { return (byte() & 1) != 0; }

    /// 0 to `limit` - 1.
    uint32 below(uint32 limit) { return (limit <= 256 ? byte() : number()) % limit; }

    uint32 number() {
        uint32 value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | byte();
        return value;
    }

    uint64 long_number() {
        uint64 const high = number();
        return high << 32 | number();
    }

    std::string_view bytes(std::size_t count) {
        auto const taken = left_.substr(0, count);
        left_.remove_prefix(taken.size());
        return taken;
    }

    /// A text of up to 255 bytes with its length in front.
    narrow_string text() { return narrow_string(bytes(byte())); }

    std::string_view rest() { return bytes(left_.size()); }

    /// 16-bit units, the low byte first; an odd byte at the end is left out.
    static wide_string units(std::string_view bytes) {
        wide_string text(bytes.size() / 2, u'\0');
        for (std::size_t i = 0; i < text.size(); ++i)
            text[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i])
                                            | static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
        return text;
    }

    wide_string wide_text() { return units(bytes(byte())); }

private:
    std::string_view left_;
};

/// The number in `size` bytes at `at`, the low byte first, or the high one if `big`.
inline uint64 number_at(std::string_view bytes, std::size_t at, std::size_t size, bool big = false) {
    uint64 value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + (big ? i : size - 1 - i)]);
    return value;
}

/// The pieces between separators.
template <class Text>
std::vector<Text> pieces_of(Text const & text, std::type_identity_t<Text> const & separators) {
    std::vector<Text> pieces(1);
    for (auto const unit : text)
        if (separators.find(unit) == separators.npos)
            pieces.back() += unit;
        else
            pieces.emplace_back();
    return pieces;
}

/// What a model throws where the library has to refuse.
struct refusal {};

/// Whether a call throws a `Refusal`.
template <class Refusal>
bool refuses(auto && act) {
    try {
        act();
    } catch (Refusal const &) {
        return true;
    }
    return false;
}

/// How much is handed over in a turn: each byte of `sizes` says so by one less, turn by turn; 4096 if there are none.
inline uint32 block_size(std::string_view sizes, std::size_t turn) {
    return sizes.empty() ? 4096 : static_cast<unsigned char>(sizes[turn % sizes.size()]) + 1u;
}

inline byte_vector vector_of(std::string_view bytes) { return {bytes.begin(), bytes.end()}; }

} // namespace fuzz
