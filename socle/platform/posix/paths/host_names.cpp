#include "socle/platform/posix/paths/host_names.h"

#include <cstddef>

namespace platform::posix {

namespace {

constexpr char16_t bad_byte = 0xDC00;
constexpr char16_t host_backslash = 0xF05C;
constexpr char16_t host_colon = 0xF03A;

bool is_high(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool is_low(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void append_utf8(narrow_string & text, char32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
        return;
    }
    int const trail = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr unsigned char leads[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(leads[trail] | c >> 6 * trail);
    for (int i = trail - 1; i >= 0; --i)
        text += static_cast<char>(0x80 | (c >> 6 * i & 0x3F));
}

/// The character at the start of `text` and its length; length 0 if no valid one stands there.
std::size_t decode_utf8(std::string_view text, char32_t & c) {
    auto const byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    unsigned const lead = byte(0);
    if (lead < 0x80) {
        c = lead;
        return 1;
    }
    std::size_t const size = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (size == 0 || text.size() < size)
        return 0;
    c = lead & (0xFFu >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        c = c << 6 | (byte(i) & 0x3F);
    }
    bool const overlong = (size == 3 && c < 0x800) || (size == 4 && c < 0x10000);
    bool const surrogate = c >= 0xD800 && c <= 0xDFFF;
    return overlong || surrogate || c > 0x10FFFF ? 0 : size;
}

void append_utf16(wide_string & text, char32_t c) {
    if (c < 0x10000) {
        text += static_cast<char16_t>(c);
        return;
    }
    text += static_cast<char16_t>(0xD7C0 + (c >> 10));
    text += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
}

/// `append(text, c)` adds a character, or says that its bytes count as bad ones.
template <typename Append>
void decode(std::string_view host, wide_string & text, Append append) {
    while (!host.empty()) {
        char32_t c = 0;
        std::size_t const size = decode_utf8(host, c);
        if (size != 0 && append(text, c)) {
            host.remove_prefix(size);
            continue;
        }
        // One byte at a time: what follows it may well be valid.
        text += static_cast<char16_t>(bad_byte + static_cast<unsigned char>(host[0]));
        host.remove_prefix(1);
    }
}

} // namespace

bool to_host_name(std::u16string_view name, narrow_string & host) {
    host.clear();
    for (std::size_t i = 0; i < name.size(); ++i) {
        char16_t const unit = name[i];
        if (std::u16string_view(u"\0/\\:", 4).find(unit) != std::u16string_view::npos)
            return false;
        if (unit == host_backslash || unit == host_colon) {
            host += unit == host_colon ? ':' : '\\';
        } else if (is_high(unit)) {
            if (i + 1 == name.size() || !is_low(name[i + 1]))
                return false;
            char32_t const high = unit;
            append_utf8(host, 0x10000 + ((high - 0xD800) << 10) + (char32_t{name[++i]} - 0xDC00));
        } else if (is_low(unit)) {
            if (unit < bad_byte + 0x80 || unit > bad_byte + 0xFF)
                return false;
            host += static_cast<char>(unit - bad_byte);
        } else {
            append_utf8(host, unit);
        }
    }
    return true;
}

void append_host_name(std::string_view host, wide_string & text) {
    decode(host, text, [](wide_string & name, char32_t c) {
        if (c == host_backslash || c == host_colon)
            return false;
        append_utf16(name, c == U':' ? host_colon : c == U'\\' ? host_backslash : c);
        return true;
    });
}

wide_string from_host_name(std::string_view host) {
    wide_string name;
    append_host_name(host, name);
    return name;
}

wide_string from_host_text(std::string_view host) {
    wide_string all;
    decode(host, all, [](wide_string & text, char32_t c) {
        append_utf16(text, c);
        return true;
    });
    return all;
}

} // namespace platform::posix
