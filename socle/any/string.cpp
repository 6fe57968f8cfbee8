#include "socle/any/string.h"

#include "socle/any/system_pages_internal.h"

#include <algorithm>
#include <string_view>

namespace any {

namespace {

constexpr std::string_view fallback_alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+-";

/// What is known of a page, so that conversions can be left out.
struct page_facts {
    bool ascii;  // the units 0x01 to 0x7F are bytes of the same value
    bool stable; // all bytes but 0, wherever they came from, return to themselves through 16-bit text

    explicit page_facts(bool ansi) {
        narrow_string bytes;
        wide_string units;
        auto const return_up_to = [&](unsigned last) {
            while (bytes.size() < last)
                bytes += static_cast<char>(bytes.size() + 1);
            units = system_pages().to_unicode(bytes, ansi);
            narrow_string const back = system_pages().from_unicode(units, ansi);
            return units.size() == bytes.size() && back == bytes;
        };
        ascii = return_up_to(0x7F) && std::ranges::equal(units, bytes);
        stable = return_up_to(0xFF);
    }
};

page_facts const & facts(bool ansi) {
    static page_facts const pages[] = {page_facts(false), page_facts(true)};
    return pages[ansi];
}

/// Copies a text of the units 0x01 to 0x7F alone. False, with `result` in any state, if there are others.
bool narrow_ascii(wide_string const & text, narrow_string & result) {
    result.resize(text.size());
    char * out = result.data();
    unsigned others = 0;
    for (char16_t const unit : text) {
        others |= static_cast<uint16>(unit - 1) >= 0x7F;
        *out++ = static_cast<char>(unit);
    }
    return others == 0;
}

bool is_ascii(narrow_string const & bytes) {
    return std::ranges::all_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

void fold(wide_string const & text, narrow_string & result) {
    result.clear();
    for (char16_t const unit : text)
        result += unit >= 0x20 && unit < 0x80 ? static_cast<char>(unit) : fallback_alphabet[unit % 64];
}

} // namespace

string::string(char const * text, bool ansi) : string(narrow_string(text), ansi) {}

string::string(narrow_string const & text, bool ansi) { set(text, ansi); }

string::string(unsigned char const * text, bool ansi) { set(text, ansi); }

void string::set(narrow_string const & text, bool ansi) { decode(text, *this, ansi, "any::string"); }

void string::set(unsigned char const * text, bool ansi) { set(narrow_string(text + 1, text + 1 + *text), ansi); }

void string::get_str(narrow_string & result, bool ansi) const {
    if (facts(ansi).ascii && narrow_ascii(*this, result))
        return;
    if (!system_pages().from_unicode(*this, result, ansi))
        fold(*this, result);
}

narrow_string const & string::str(bool ansi) const {
    narrow_string & form = other_forms().narrow;
    get_str(form, ansi);
    return form;
}

char const * string::cstr(bool ansi) const { return str(ansi).c_str(); }

unsigned char const * string::pstr(bool ansi) const {
    narrow_string & form = other_forms().narrow;
    get_str(form, ansi);
    form.insert(form.begin(), static_cast<char>(form.size()));
    return reinterpret_cast<unsigned char const *>(form.data());
}

string::ci_string const & string::ci_wstr() const { return other_forms().ci.assign(data(), size()); }

string::forms & string::other_forms() const {
    if (!cache_.made)
        cache_.made = std::make_unique<forms>();
    return *cache_.made;
}

string string::ext() const {
    string result;
    if (auto const dot = rfind(u'.'); dot != npos)
        result.assign(*this, dot);
    return result;
}

bool string::pattern_match(string const & pattern) const {
    wide_string const & wanted = pattern;
    if (*this == wanted || wanted == u"*")
        return true;
    std::string_view pieces = pattern.str(true);
    narrow_string bytes;
    if (auto const zero = find(u'\0'); zero == npos)
        get_str(bytes, true);
    else
        string(substr(0, zero)).get_str(bytes, true);
    bool const stable = facts(true).stable || (facts(true).ascii && is_ascii(bytes));
    std::string_view rest = bytes;
    for (bool first = true;; first = false) {
        auto const star = pieces.find('*');
        auto const piece = pieces.substr(0, star);
        auto const found = rest.find(piece);
        if (found == rest.npos || (first && found != 0))
            return false;
        if (star == pieces.npos)
            return true;
        pieces.remove_prefix(star + 1);
        rest.remove_prefix(found);
        if (!stable) {
            // The bytes may be of another page than the ANSI one, or begin within a character.
            string(narrow_string(rest), true).get_str(bytes, true);
            rest = bytes;
        }
    }
}

} // namespace any
