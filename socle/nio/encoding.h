#pragma once

#include "socle/nio/utf8.h"

/// Between 16-bit and 8-bit text. A selector says which 8-bit form: a number above 0 is that code page, -1 the system's
/// ANSI page, -3 UTF-8 of single units (`nio/utf8.h`), and any other the system's OEM page.
namespace nio {

/// By a page, what it cannot show becomes "_", and zero bytes at the end are dropped; UTF-8 keeps both. An unknown
/// page, and a text of 4 GiB or more for a page, give the empty string.
SOCLE_API narrow_string encode(wide_string const & text, int encoding);
/// UTF-8 is validated. What the page refuses gives the empty string.
SOCLE_API wide_string decode(narrow_string const & bytes, int encoding);

/// The same by code pages only; here -3 is the OEM page. They replace `out`.
SOCLE_API void _narrowen(wide_string const & text, narrow_string & out, int encoding);
SOCLE_API void _widen(narrow_string const & bytes, wide_string & out, int encoding);
/// The number of the page that these two use.
SOCLE_API int _codepage(int encoding);

/// First every unit `to` becomes '_', then every unit `from` becomes `to`, so that all units `to` were `from` before.
/// If both are the same nothing changes.
SOCLE_API void translate(wide_string & text, char16_t from, char16_t to);

} // namespace nio
