#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"
#include "socle/un/ci_wchar_t_traits.h"

#include <memory>
#include <utility>

namespace any {

/// 16-bit text, compared and changed as a plain one, that can also be read in other forms. Each form is computed anew
/// when it is asked for. Its reference or pointer is valid until `str`, `cstr`, `pstr`, `ci_wstr` or, for a pattern,
/// `pattern_match` uses the same object again; so two threads must not ask one object at once.
///
/// `ansi` picks the system's ANSI page, else its OEM page. Neither is UTF-8: text of the host goes through
/// `platform::from_host`.
class SOCLE_API string : public wide_string {
public:
    /// Text that compares without regard to case. Of its searches `rfind` disregards case as well, `find` only behind
    /// the first unit that it looks for, and `find_first_of` and its like mind it.
    using ci_string = std::basic_string<char16_t, un::ci_wchar_t_traits>;

    string() = default;
    /// Takes the units as they are; text at a pointer ends at its first zero.
    string(wide_string text) : wide_string(std::move(text)) {}
    string(char16_t const * text) : wide_string(text) {}
    /// As `set`; `text` ends at its first zero.
    string(char const * text, bool ansi);
    /// As `set`.
    string(narrow_string const & text, bool ansi);
    string(unsigned char const * text, bool ansi);

    /// Assigning plain text replaces the 16-bit text alone.
    using wide_string::operator=;

    /// Replaces the text by `text`, converted from 8 bits. Throws an `any::exception` "cannot convert to Unicode" from
    /// "any::string", and is then empty, if `text` cannot be converted.
    void set(narrow_string const & text, bool ansi);
    /// Does the same; `text` is a byte with the length, and then that many bytes.
    void set(unsigned char const * text, bool ansi);

    /// Replaces `result` by `str(ansi)`.
    void get_str(narrow_string & result, bool ansi) const;
    /// The 8-bit form, as by `any::converter::from_unicode`. A text that no installed page holds is folded instead: one
    /// printable character for each unit, which cannot be undone.
    narrow_string const & str(bool ansi) const;
    /// `str(ansi)` with a zero byte behind it.
    char const * cstr(bool ansi) const;
    /// `str(ansi)` behind a byte that holds the low 8 bits of its length.
    unsigned char const * pstr(bool ansi) const;
    /// The text in a form that compares without regard to case.
    ci_string const & ci_wstr() const;

    /// From the last "." on, with the dot; empty if there is none.
    string ext() const;

    /// Whether the text, up to its first zero, matches `pattern`, in which "*" matches anything. Works on the 8-bit
    /// forms, with case:
    /// - The text may go on behind the pattern: "abc" and "a*c" match "abcdef".
    /// - Each piece between stars is searched from the start of the piece before it, so "ab*b" matches "ab".
    ///
    /// Throws as `set` does, if the 8-bit form, from the start of a piece on, does not convert back.
    bool pattern_match(string const & pattern) const;

private:
    struct forms {
        narrow_string narrow;
        ci_string ci;
    };
    // Made when one is asked for first. No object takes over those of another.
    struct cache {
        cache() = default;
        cache(cache const &) noexcept {}
        cache & operator=(cache const &) noexcept { return *this; }
        ~cache() = default;

        std::unique_ptr<forms> made;
    };

    forms & other_forms() const;

    mutable cache cache_;
};

} // namespace any
