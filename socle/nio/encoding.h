#pragma once

#include "socle/nio/utf8.h"

/// Between 16-bit and 8-bit text. A selector says which 8-bit form: a number above 0 is that code page, -1 the system's
/// ANSI page, -3 UTF-8 of single units (`nio/utf8.h`), and any other the system's OEM page.
namespace nio {

/// Selectors with names.
namespace encodings {

constexpr int ansi = -1;         ///< the ANSI page of the system
constexpr int oem = -2;          ///< the OEM page of the system
constexpr int utf8 = -3;         ///< UTF-8
constexpr int western = 1252;    ///< the ANSI page of Western Europe
constexpr int mac_roman = 10000; ///< the classic Macintosh's

} // namespace encodings

/// Converts to `encoding`. In a page, a character that it lacks becomes "_", and zero bytes at the end are dropped;
/// UTF-8 keeps both. Returns the empty string for an unknown page, and for a page and a text of 4 GiB or more.
SOCLE_API narrow_string encode(wide_string const & text, int encoding);
/// Converts from `encoding`. UTF-8 is validated. Returns the empty string for bytes that the page refuses.
SOCLE_API wide_string decode(narrow_string const & bytes, int encoding);

/// Converts to a code page, where -3 is the OEM page, and replaces `out`.
SOCLE_API void _narrowen(wide_string const & text, narrow_string & out, int encoding);
/// Converts from a code page, where -3 is the OEM page, and replaces `out`.
SOCLE_API void _widen(narrow_string const & bytes, wide_string & out, int encoding);
/// The number of the page that `_narrowen` and `_widen` use for `encoding`.
SOCLE_API int _codepage(int encoding);

/// Replaces every unit `to` by '_', then every unit `from` by `to`, so that every unit `to` was `from` before. Changes
/// nothing if both are the same.
SOCLE_API void translate(wide_string & text, char16_t from, char16_t to);

} // namespace nio
