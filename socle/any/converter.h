#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace any {

/// Converts between 8-bit and 16-bit text through two code pages of the system's, of which each call picks one: the
/// ANSI page if `ansi` is true, else the OEM page. No operation throws; the forms that return a text return the
/// empty one on failure. Text whose result could be longer than 32 bits can count is refused.
class SOCLE_API converter {
public:
    /// The system's own two pages, as they are now.
    converter();
    /// Takes any numbers. A page that the system does not know converts nothing to 16 bits, and to 8 bits as if it
    /// lacked every character.
    converter(int ansi_page, int oem_page);

    /// The number of the ANSI page.
    int ansi_page() const noexcept { return ansi_page_; }
    /// The number of the OEM page.
    int oem_page() const noexcept { return oem_page_; }

    /// Converts to 16 bits. Malformed bytes become what the system makes of them. False, with `result` empty, if the
    /// page is not known.
    bool to_unicode(narrow_string const & text, wide_string & result, bool ansi) const;
    wide_string to_unicode(narrow_string const & text, bool ansi) const;

    /// Converts to 8 bits without replacement characters: if the page lacks a character, the result is in the first
    /// installed page that holds the whole text, beginning with the system's ANSI page; nothing says which one that is.
    /// False, with `result` empty, if there is none. Zeros at the end of `text` are dropped.
    bool from_unicode(wide_string const & text, narrow_string & result, bool ansi) const;
    narrow_string from_unicode(wide_string const & text, bool ansi) const;

private:
    /// The ANSI page, then all installed ones in the system's order. Filled once, by the first converter of the
    /// process.
    static std::vector<uint32> installed_pages_;
    static void fill_installed_pages();

    uint32 page(bool ansi) const { return static_cast<uint32>(ansi ? ansi_page_ : oem_page_); }

    int ansi_page_;
    int oem_page_;
};

} // namespace any
