#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <compare>

namespace un {

/// The traits of 16-bit text that compares without regard to case, by the lower case of the locale. The text keeps its
/// case, and all but comparing is that of plain units.
class SOCLE_API ci_wchar_t_traits : public std::char_traits<char16_t> {
public:
    /// Units that differ in case alone are equivalent, not equal.
    using comparison_category = std::weak_ordering;

    /// Whether both are the same in lower case.
    static bool eq(char16_t a, char16_t b) noexcept;
    /// Whether `a` comes first in lower case.
    static bool lt(char16_t a, char16_t b) noexcept;
    /// Compares `n` units in lower case: -1, 0 or 1.
    static int compare(char16_t const * a, char16_t const * b, std::size_t n) noexcept;
};

} // namespace un
