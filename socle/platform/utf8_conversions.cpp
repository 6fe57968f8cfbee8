#include "socle/platform/utf8_conversions.h"

#include "socle/platform/converted_text.h"
#include "socle/platform/unicode.h"

namespace platform {

namespace {

using converted::convert_steps;
using converted::convert_to;

constexpr char32_t replacement = 0xFFFD;

} // namespace

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
            char32_t character;
            bool const good = unicode::read_utf16(at, last, character);
            unicode::put_utf8(good ? character : replacement, [&](char byte) { out.put(byte); });
        });
    });
}

} // namespace platform
