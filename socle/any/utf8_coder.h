#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace any {

/// Encodes a name as 8-bit text without any code page, in a form of its own: unit by unit, each surrogate in three
/// bytes, and the zero unit as 0xC0 0x80, so that encoded text has no zero byte. Encoded text always decodes to the
/// original.
class SOCLE_API utf8_coder {
public:
    /// The number of bytes that `encode` writes, modulo 2 to the 32nd: 1 for 0x0001 to 0x007F, 2 for 0x0000 and up to
    /// 0x07FF, 3 above.
    static uint32 encoded_size(wide_string const & text);

    /// Encodes `text`. Throws an `any::exception` "encoded string is too long" from "any::utf8_coder", with `result`
    /// untouched, if the encoded text is larger than a string can be.
    static void encode(wide_string const & text, narrow_string & result);
    static narrow_string encode(wide_string const & text);

    /// Decodes any bytes; overlong forms count. From the first malformed sequence on, whose lead byte becomes a unit
    /// and whose other bytes are lost, every byte becomes one unit of the same value.
    static void decode(narrow_string const & text, wide_string & result);
    static wide_string decode(narrow_string const & text);
};

} // namespace any
