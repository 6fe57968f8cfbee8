#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace un {

/// A cursor in its own copy of a text. No operation fails on bad text: each stops at the first character that it cannot
/// use.
class SOCLE_API parser {
public:
    /// The position of a scan that has ended.
    static constexpr uint32 npos = 0xFFFFFFFF;

    /// Walks through `text` from `position` on.
    parser(narrow_string const & text, uint32 position);

    /// Whether the scan has ended.
    bool eos() const noexcept { return position_ == npos; }

    /// The index of the next character, or `npos`.
    uint32 position() const noexcept { return position_; }

    /// Returns the text up to the next of `delimiters`, to which the cursor moves; without one, the whole rest, which
    /// ends the scan. Throws `std::out_of_range` if the constructor was given a position beyond the text.
    narrow_string string(char const * delimiters);

    /// Reads the number at the cursor, modulo 2 to the 64th, or 0 if there is none. Digits are those of `radix`, but a
    /// letter past f counts 0. A number that ends the text leaves the cursor behind it, with `eos()` still false.
    uint64 number(int radix);

    /// Moves to the next character that is not in the set, or ends the scan if there is none.
    void skip_through(char const * characters);

    /// Moves to the next character that is in the set, or ends the scan if there is none.
    void skip_until(char const * characters);

private:
    narrow_string text_;
    uint32 position_;
};

} // namespace un
