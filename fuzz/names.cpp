/// Names and texts in many encodings, their fragments, and the match of a pattern.

#include "fuzz/support/feed.h"
#include "socle/any/exception.h"
#include "socle/any/name.h"
#include "socle/any/string.h"

namespace {

using fuzz::check;

void fragments(wide_string const & text, char16_t separator) {
    any::name name(separator);
    name.set_ucs2(text);
    auto wanted = fuzz::pieces_of(text, wide_string(1, separator));
    std::erase(wanted, u".");
    if (text.empty())
        wanted.clear();
    while (wanted.size() > 1 && wanted.back().empty())
        wanted.pop_back();
    std::vector<wide_string> found;
    for (auto it = name.fragment_begin(); it != name.fragment_end(); it++)
        found.push_back(*it);
    check(found == wanted && name.fragment_size() == wanted.size());
    check(name.leaf() == (wanted.empty() ? wide_string() : wanted.back()));
    if (text.empty())
        return;
    name.add_leaf(u"leaf");
    check(separator == u'l' || separator == u'e' || separator == u'a' || separator == u'f' || name.leaf() == u"leaf");
}

void encodings(narrow_string const & bytes, wide_string const & text) {
    for (bool const ansi : {true, false}) {
        // From a page and back: the pages are told to be inverse.
        any::string const from(bytes, ansi);
        any::name name;
        if (ansi)
            name.set_ansi(bytes);
        else
            name.set_oem(bytes);
        check(name.get_ucs2() == from);
        narrow_string kept = bytes;
        while (!kept.empty() && kept.back() == '\0')
            kept.pop_back();
        check((ansi ? name.get_ansi() : name.get_oem()) == kept && from.str(ansi) == kept);

        // A text has a narrow form, folded if need be.
        any::string const any_text(text);
        narrow_string const narrow = any_text.str(ansi);
        check(narrow == any_text.cstr(ansi) || narrow.find('\0') != narrow.npos);
        unsigned char const * const counted = any_text.pstr(ansi);
        check(*counted == narrow.size() % 256
              && std::equal(narrow.begin(), narrow.end(), counted + 1,
                            [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }));
        name.set_ucs2(text);
        try {
            check((ansi ? name.get_ansi() : name.get_oem()) == narrow);
        } catch (any::exception const & e) {
            check(e.message() == "cannot convert from Unicode" && narrow.size() == text.size());
        }
    }
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    char16_t const separator = in.flag() ? u'\\' : static_cast<char16_t>(in.byte());
    narrow_string const pattern = in.text();
    narrow_string const bytes(in.rest());
    wide_string const text = feed::units(bytes);
    fragments(text, separator);
    fragments(wide_string(bytes.begin(), bytes.end()), separator);
    encodings(bytes, text);

    any::string const narrow(wide_string(bytes.begin(), bytes.end())),
        wanted(wide_string(pattern.begin(), pattern.end()));
    narrow.pattern_match(wanted);
    check(any::string(text).pattern_match(u"*") && any::string(text).pattern_match(text));
    any::string(text).pattern_match(wanted);
    check(any::string(text).ci_wstr() == narrow.ci_wstr() || text != wide_string(bytes.begin(), bytes.end()));
}
