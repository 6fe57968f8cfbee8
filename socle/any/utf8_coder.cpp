#include "socle/any/utf8_coder.h"

#include "socle/any/exception.h"

#include <algorithm>

namespace any {

namespace {

/// The bytes of one unit. Zero less 1 lies far above every unit of one byte.
uint64 unit_size(char16_t unit) { return static_cast<uint16>(unit - 1) < 0x7F ? 1 : unit < 0x800 ? 2 : 3; }

uint64 text_size(wide_string const & text) {
    uint64 size = 0;
    for (char16_t const unit : text)
        size += unit_size(unit);
    return size;
}

} // namespace

uint32 utf8_coder::encoded_size(wide_string const & text) { return static_cast<uint32>(text_size(text)); }

void utf8_coder::encode(wide_string const & text, narrow_string & result) {
    uint64 const size = text_size(text);
    if (size > result.max_size())
        throw exception("encoded string is too long", "any::utf8_coder");
    result.resize(static_cast<std::size_t>(size));
    char * out = result.data();
    auto const put = [&out](unsigned value) { *out++ = static_cast<char>(value); };
    for (unsigned const unit : text) {
        switch (unit_size(static_cast<char16_t>(unit))) {
        case 1: put(unit); break;
        case 2:
            put(0xC0 | unit >> 6);
            put(0x80 | (unit & 0x3F));
            break;
        default:
            put(0xE0 | unit >> 12);
            put(0x80 | (unit >> 6 & 0x3F));
            put(0x80 | (unit & 0x3F));
        }
    }
}

narrow_string utf8_coder::encode(wide_string const & text) {
    narrow_string result;
    encode(text, result);
    return result;
}

void utf8_coder::decode(narrow_string const & text, wide_string & result) {
    result.resize(text.size());
    char16_t * out = result.data();
    auto const byte = [&text](std::size_t i) -> unsigned { return static_cast<unsigned char>(text[i]); };
    bool structured = true;
    for (std::size_t next = 0; next < text.size();) {
        unsigned const lead = byte(next++);
        unsigned unit = lead;
        if (structured && lead >= 0x80) {
            std::size_t const wanted = lead >> 5 == 6 ? 1 : lead >> 4 == 14 ? 2 : 0;
            std::size_t const taken = std::min(wanted, text.size() - next);
            structured = wanted != 0 && taken == wanted;
            unsigned value = lead & (wanted == 1 ? 0x1F : 0x0F);
            for (std::size_t const end = next + taken; next != end; ++next) {
                structured = structured && byte(next) >> 6 == 2;
                value = value << 6 | (byte(next) & 0x3F);
            }
            unit = structured ? value : lead;
        }
        *out++ = static_cast<char16_t>(unit);
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
}

wide_string utf8_coder::decode(narrow_string const & text) {
    wide_string result;
    decode(text, result);
    return result;
}

} // namespace any
