#pragma once

#include "socle/basic/types.h"

#include <functional>

/// Code pages: 8-bit encodings by number. Any thread may call these at any time.
namespace platform {

/// UTF-8 by its number. It is no installed page.
constexpr uint32 CP_UTF8 = 65001;

/// The page of ordinary programs and that of consoles, by the language of the process's locale.
uint32 GetACP();
uint32 GetOEMCP();

/// Calls `page` for each installed page with its number as decimal text, until it returns false.
bool EnumSystemCodePagesA(std::function<bool(char const *)> const & page);

/// Converts `count` bytes and returns the number of units.
/// - With a capacity of 0 nothing is stored, and the result is what would be needed.
/// - 0 is a failure: nothing to convert or an unknown page (87), or more units than fit, or than 32 bits count (122).
/// - A byte that means nothing is the unit of its own value below 0xA0, and a private one above.
/// - A pair that means nothing, and a first byte alone, is one replacement: "?", U+30FB in page 932. Bad UTF-8 is
///   U+FFFD, and ends before the first byte that cannot belong to it.
uint32 MultiByteToWideChar(uint32 page, char const * from, uint32 count, char16_t * to, uint32 capacity);

/// Converts `count` units and returns the number of bytes, as above.
/// - A unit that the page lacks becomes `default_character`, one byte, or a question mark if that is null. Then
///   `used_default`, if it is not null, is set to true, and to false otherwise.
/// - In UTF-8 lone surrogates become U+FFFD, and `used_default` has to be null (87).
uint32 WideCharToMultiByte(uint32 page, char16_t const * from, uint32 count, char * to, uint32 capacity,
                           char const * default_character, bool * used_default);

} // namespace platform
