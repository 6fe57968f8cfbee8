#pragma once

#include <limits>

namespace un {

/// What `digit_value` gives for a character that is no digit: not below any radix.
constexpr int no_digit = std::numeric_limits<int>::max();

/// The value of a digit of any radix up to 36.
constexpr int digit_value(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'Z' ? c - 'A' + 10 : no_digit;
}

} // namespace un
