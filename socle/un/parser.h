#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace un {

/// A cursor that walks through its own copy of a text. Nothing here fails on bad text: each operation stops at the
/// first character that it cannot take.
class SOCLE_API parser {
public:
    /// The position of a scan that has ended.
    static constexpr uint32 npos = 0xFFFFFFFF;

    /// Walks through `text` from `position` on.
    parser(narrow_string const & text, uint32 position);

    /// Whether the scan has ended.
    bool eos() const noexcept { return position_ == npos; }

    /// The index of the next character to look at, or `npos`.
    uint32 position() const noexcept { return position_; }

    /// The text up to the next of `delimiters`, on which the cursor then stands; without one, the whole rest, and the
    /// scan has ended. Throws `std::out_of_range` if the constructor was given a position beyond the text.
    narrow_string string(char const * delimiters);

    /// The number at the cursor, modulo 2 to the 64th, or 0 if there is none; digits are those of `radix`, but a letter
    /// past f counts 0. A number that ends the text leaves the cursor behind it, with `eos()` still false.
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
