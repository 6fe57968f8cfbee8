#include "socle/platform/host_names.h"

#include "socle/platform/unicode.h"

namespace platform {

namespace {

constexpr char16_t bad_byte = 0xDC00;
constexpr char16_t host_backslash = 0xF05C;
constexpr char16_t host_colon = 0xF03A;

void append_utf8(narrow_string & text, char32_t c) {
    unicode::put_utf8(c, [&](char byte) { text += byte; });
}

void append_utf16(wide_string & text, char32_t c) {
    unicode::put_utf16(c, [&](char16_t unit) { text += unit; });
}

/// `append(text, c)` adds a character, or says that its bytes count as bad ones.
template <typename Append>
void decode(std::string_view host, wide_string & text, Append append) {
    while (!host.empty()) {
        char32_t c = 0;
        char const * behind = host.data();
        if (unicode::read_utf8(behind, host.data() + host.size(), c) && append(text, c)) {
            host.remove_prefix(std::size_t(behind - host.data()));
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
        if (unit == u'\0' || unit == u'/' || unit == u'\\' || unit == u':')
            return false;
        if (unit < 0x80) {
            host += static_cast<char>(unit);
        } else if (unit == host_backslash || unit == host_colon) {
            host += unit == host_colon ? ':' : '\\';
        } else if (unicode::is_high_surrogate(unit)) {
            if (i + 1 == name.size() || !unicode::is_low_surrogate(name[i + 1]))
                return false;
            append_utf8(host, unicode::join_surrogates(unit, name[++i]));
        } else if (unicode::is_low_surrogate(unit)) {
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
        append_utf16(name, c == U':' ? char32_t{host_colon} : c == U'\\' ? char32_t{host_backslash} : c);
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

} // namespace platform
