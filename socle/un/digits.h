#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

/// Digits are "0" to "9" for 0 to 9 and letters of either case for 10 to 35; only lower case is written. Numbers have
/// no sign. A radix below 2 knows no digit: numbers then read as 0 and are written as the empty text.
namespace un {

/// Whether `c` is a digit of `radix`.
SOCLE_API bool is_digit(char c, int radix);

/// The value of `c`, or 0 if it is no digit of `radix`.
SOCLE_API unsigned char from_digit(char c, int radix);

/// The digit of `value`, or the NUL character if `value` is not below `radix` or has no digit.
SOCLE_API char to_digit(unsigned char value, int radix);

/// Two hexadecimal digits, high half first.
SOCLE_API narrow_string to_hex(char byte);

/// Two hexadecimal digits for each byte, in order.
SOCLE_API narrow_string hex(narrow_string const & bytes);
SOCLE_API narrow_string hex(byte_vector const & bytes);

/// The number at the start of `text`, modulo 2 to the 64th. The digits taken are those of radix 16 whatever `radix` is,
/// which only multiplies: with radix 10, "1f" reads as 25. Ends at the first other character.
SOCLE_API uint64 read(narrow_string const & text, int radix);

/// The digits of `value`, filled up with leading zeros to at least `width` characters; 0 in no width is the empty text.
/// A radix above 16 writes a NUL character for each digit of 16 and more.
SOCLE_API narrow_string write(uint64 value, int radix, int width);

} // namespace un
