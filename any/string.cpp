#include "any/string.h"

#include "any/exception.h"
#include "any/system_pages_internal.h"

#include <algorithm>
#include <string_view>

namespace any {

namespace {

constexpr std::string_view fallback_alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+-";

/// Whether a page leaves the units 0x01 to 0x7F as they are.
bool holds_ascii(bool ansi) {
    static auto const test = [](bool page) {
        wide_string units;
        for (char16_t unit = 1; unit < 0x80; ++unit) {
            units += unit;
        }
        narrow_string const bytes(units.begin(), units.end());
        return system_pages().from_unicode(units, page) == bytes && system_pages().to_unicode(bytes, page) == units;
    };
    static bool const ansi_page = test(true);
    static bool const oem_page = test(false);
    return ansi ? ansi_page : oem_page;
}

/// Copies a text of the units 0x01 to 0x7F alone. False, with `result` in any state, if there are others.
bool narrow_ascii(std::u16string_view text, narrow_string & result) {
    result.resize(text.size());
    char * out = result.data();
    unsigned others = 0;
    for (char16_t const unit : text) {
        others |= static_cast<uint16>(unit - 1) >= 0x7F;
        *out++ = static_cast<char>(unit);
    }
    return others == 0;
}

void fold(wide_string const & text, narrow_string & result) {
    result.clear();
    for (char16_t const unit : text) {
        result += unit >= 0x20 && unit < 0x80 ? static_cast<char>(unit) : fallback_alphabet[unit % 64];
    }
}

} // namespace

string::string(char const * text, bool ansi) : string(narrow_string(text), ansi) {}

string::string(narrow_string const & text, bool ansi) { set(text, ansi); }

string::string(unsigned char const * text, bool ansi) { set(text, ansi); }

void string::set(narrow_string const & text, bool ansi) {
    if (!system_pages().to_unicode(text, *this, ansi)) {
        throw exception("cannot convert to Unicode", "any::string");
    }
}

void string::set(unsigned char const * text, bool ansi) { set(narrow_string(text + 1, text + 1 + *text), ansi); }

void string::get_str(narrow_string & result, bool ansi) const {
    if (holds_ascii(ansi) && narrow_ascii(*this, result)) {
        return;
    }
    if (!system_pages().from_unicode(*this, result, ansi)) {
        fold(*this, result);
    }
}

narrow_string const & string::str(bool ansi) const {
    get_str(narrow_form_, ansi);
    return narrow_form_;
}

char const * string::cstr(bool ansi) const { return str(ansi).c_str(); }

unsigned char const * string::pstr(bool ansi) const {
    get_str(narrow_form_, ansi);
    narrow_form_.insert(narrow_form_.begin(), static_cast<char>(narrow_form_.size()));
    return reinterpret_cast<unsigned char const *>(narrow_form_.data());
}

string::ci_string const & string::ci_wstr() const {
    ci_form_.assign(data(), size());
    return ci_form_;
}

string string::ext() const {
    string result;
    if (auto const dot = rfind(u'.'); dot != npos) {
        result.assign(*this, dot);
    }
    return result;
}

bool string::pattern_match(string const & pattern) const {
    wide_string const & wanted = pattern;
    if (*this == wanted || wanted == u"*") {
        return true;
    }
    std::string_view pieces = pattern.str(true);
    std::u16string_view const text = c_str(); // up to its first zero
    narrow_string bytes;
    bool const ascii = holds_ascii(true) && narrow_ascii(text, bytes);
    if (!ascii) {
        string(wide_string(text)).get_str(bytes, true);
    }
    std::string_view rest = bytes;
    for (bool first = true;; first = false) {
        auto const star = pieces.find('*');
        auto const piece = pieces.substr(0, star);
        auto const found = rest.find(piece);
        if (found == rest.npos || (first && found != 0)) {
            return false;
        }
        if (star == pieces.npos) {
            return true;
        }
        pieces.remove_prefix(star + 1);
        rest.remove_prefix(found);
        if (!ascii) {
            // The bytes may be of another page than the ANSI one, or begin within a character.
            string(narrow_string(rest), true).get_str(bytes, true);
            rest = bytes;
        }
    }
}

} // namespace any
