#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

/// UTF-8 of single 16-bit units: a surrogate pair is two sequences of three bytes. Decoding knows lead bytes of up to
/// six-byte forms, and never fails: what is no sequence becomes one U+FFFD for the lead byte and the bytes that could
/// belong to it.
namespace nio {

/// The bytes that a unit takes: 1 below 0x80, 2 below 0x800, else 3.
SOCLE_API uint32 _utf8_size(char16_t unit);
SOCLE_API uint32 _utf8_size(uint16 unit);
/// The length of the sequence that a byte leads, 1 to 6; 0 if it leads none.
SOCLE_API uint32 _utf8_size(char lead);

/// Encodes `text` into `out`, which it replaces.
SOCLE_API void _utf8_encode(wide_string const & text, narrow_string & out);
/// Decodes `bytes` into `out`, which it replaces. With `validate`, overlong forms, surrogates, 0xFFFE, 0xFFFF and forms
/// of four bytes or more become U+FFFD; without it every whole sequence becomes the low 16 bits of its value.
SOCLE_API void _utf8_decode(narrow_string const & bytes, wide_string & out, bool validate);

} // namespace nio
