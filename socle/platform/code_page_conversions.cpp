#include "socle/platform/code_page_conversions.h"

#include "socle/basic/ascii_internal.h"
#include "socle/platform/errors.h"
#include "socle/platform/unicode.h"

namespace platform {

namespace {

using basic::ascii::copy_ascii;
using basic::ascii::is_ascii;
using basic::ascii::step;

uint32 too_small() {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
}

/// Stores what there is room for by then.
template <class Unit>
class store {
public:
    explicit store(Unit * to) : first_(to), to_(to) {}

    void put(Unit unit) { *to_++ = unit; }
    template <class From>
    void put_ascii(From const * from) {
        copy_ascii(from, to_);
        to_ += step;
    }
    uint64 count() const { return uint64(to_ - first_); }

private:
    Unit * first_;
    Unit * to_;
};

/// Counts what would be stored.
template <class Unit>
class counter {
public:
    void put(Unit) { ++count_; }
    template <class From>
    void put_ascii(From const *) {
        count_ += step;
    }
    uint64 count() const { return count_; }

private:
    uint64 count_ = 0;
};

/// Converts [from, end), where ASCII means itself, a step at a time: whole steps of ASCII at once, the rest of a text
/// character by character with `next(from, end, out)`.
template <class From, class Out, class Next>
void convert_steps(From const * from, From const * end, Out & out, Next next) {
    while (from != end) {
        if (std::size_t(end - from) >= step && is_ascii(from)) {
            out.put_ascii(from);
            from += step;
            continue;
        }
        for (std::size_t i = 0; i < step && from != end; ++i)
            next(from, end, out);
    }
}

/// Runs `convert(out)` for its count and for its result. Without counting first if `most`, which no result of this
/// input can pass, fits.
template <class Unit, class Convert>
uint32 convert_to(Unit * to, uint32 capacity, uint64 most, Convert convert) {
    if (most > capacity) {
        counter<Unit> needed;
        convert(needed);
        if (needed.count() > (capacity == 0 ? UINT32_MAX : capacity))
            return too_small();
        if (capacity == 0)
            return static_cast<uint32>(needed.count());
    }
    store<Unit> out(to);
    convert(out);
    return static_cast<uint32>(out.count());
}

constexpr char16_t replacement = 0xFFFD;

unsigned char value(char byte) { return static_cast<unsigned char>(byte); }

uint32 decode_single_bytes(code_page const & page, char const * from, uint32 count, char16_t * to, uint32 capacity) {
    auto const * const end = from + count;
    if (capacity == 0)
        return count;
    if (capacity < count)
        return too_small();
    for (; end - from >= 8; from += 8, to += 8)
        for (int i = 0; i < 8; ++i)
            to[i] = page.single[value(from[i])];
    for (; from != end; ++from)
        *to++ = page.single[value(*from)];
    return count;
}

/// All double-byte pages have ASCII for themselves.
uint32 decode_double_bytes(code_page const & page, char const * from, uint32 count, char16_t * to, uint32 capacity) {
    return convert_to(to, capacity, uint64{count}, [&](auto & result) {
        convert_steps(from, from + count, result, [&page](char const *& at, char const * last, auto & out) {
            unsigned char const first = value(*at++);
            if (!page.lead[first] || at == last) {
                out.put(page.single[first]);
                return;
            }
            // A pair that means nothing is one replacement for both bytes, but a zero is never swallowed.
            out.put(page.pairs[first * 256u + value(*at)]);
            at += *at != 0;
        });
    });
}

uint32 encode_single_bytes(code_page const & page, char16_t const * from, uint32 count, char * to, uint32 capacity,
                           char default_character, bool & used_default) {
    auto const * const end = from + count;
    if (capacity != 0 && capacity < count)
        return too_small();
    unsigned lacking = 0;
    for (; from != end; ++from) {
        uint16 const code = page.codes[*from];
        bool const lacks = code == 0 && *from != 0;
        lacking |= lacks;
        if (capacity != 0)
            *to++ = lacks ? default_character : static_cast<char>(code);
    }
    used_default = lacking != 0;
    return count;
}

uint32 encode_double_bytes(code_page const & page, char16_t const * from, uint32 count, char * to, uint32 capacity,
                           char default_character, bool & used_default) {
    return convert_to(to, capacity, uint64{2} * count, [&](auto & result) {
        convert_steps(from, from + count, result, [&](char16_t const *& at, char16_t const *, auto & out) {
            char16_t const unit = *at++;
            uint16 const code = page.codes[unit];
            if (code == 0 && unit != 0) {
                out.put(default_character);
                used_default = true;
                return;
            }
            if (code > 0xFF)
                out.put(static_cast<char>(code >> 8));
            out.put(static_cast<char>(code));
        });
    });
}

} // namespace

uint32 decode(code_page const & page, char const * from, uint32 count, char16_t * to, uint32 capacity) {
    return page.double_bytes() ? decode_double_bytes(page, from, count, to, capacity)
                               : decode_single_bytes(page, from, count, to, capacity);
}

uint32 encode(code_page const & page, char16_t const * from, uint32 count, char * to, uint32 capacity,
              char default_character, bool & used_default) {
    used_default = false;
    return page.double_bytes() ? encode_double_bytes(page, from, count, to, capacity, default_character, used_default)
                               : encode_single_bytes(page, from, count, to, capacity, default_character, used_default);
}

uint32 decode_utf8(char const * from, uint32 count, char16_t * to, uint32 capacity) {
    return convert_to(to, capacity, uint64{count}, [&](auto & result) {
        convert_steps(from, from + count, result, [](char const *& at, char const * last, auto & out) {
            char32_t character;
            bool const good = unicode::read_utf8(at, last, character);
            unicode::put_utf16(good ? character : replacement, [&](char16_t unit) { out.put(unit); });
        });
    });
}

uint32 encode_utf8(char16_t const * from, uint32 count, char * to, uint32 capacity) {
    return convert_to(to, capacity, uint64{3} * count, [&](auto & result) {
        convert_steps(from, from + count, result, [](char16_t const *& at, char16_t const * last, auto & out) {
            char16_t const unit = *at++;
            char32_t character = unit;
            if (unicode::is_surrogate(unit)) {
                bool const pair = unicode::is_high_surrogate(unit) && at != last && unicode::is_low_surrogate(*at);
                character = pair ? unicode::join_surrogates(unit, *at++) : replacement;
            }
            unicode::put_utf8(character, [&](char byte) { out.put(byte); });
        });
    });
}

} // namespace platform
