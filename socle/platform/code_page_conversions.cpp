#include "socle/platform/code_page_conversions.h"

#include "socle/platform/converted_text.h"

namespace platform {

namespace {

using converted::convert_steps;
using converted::convert_to;
using converted::too_small;

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

} // namespace platform
