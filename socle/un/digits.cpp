#include "socle/un/digits.h"

#include "socle/un/digit_values_internal.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace un {

namespace {

constexpr std::string_view digits = "0123456789abcdefghijklmnopqrstuvwxyz";

/// The digits of `value` in `buffer`, none for 0. Those of 16 and more are NULs, which the standard library has no word
/// for.
std::string_view digits_of(uint64 value, int radix, char (&buffer)[64]) {
    char * const end = std::end(buffer);
    if (radix <= 16)
        return {buffer, value == 0 ? buffer : std::to_chars(buffer, end, value, radix).ptr};
    char * first = end;
    for (auto const base = static_cast<uint64>(radix); value != 0; value /= base) {
        uint64 const remainder = value % base;
        *--first = remainder < 16 ? digits[static_cast<std::size_t>(remainder)] : '\0';
    }
    return {first, end};
}

/// `bytes` is any run of 8-bit values.
template <class Bytes>
narrow_string hex_of(Bytes const & bytes) {
    narrow_string result;
    result.reserve(2 * bytes.size());
    for (auto const byte : bytes) {
        auto const value = static_cast<unsigned char>(byte);
        result += digits[value >> 4];
        result += digits[value & 15];
    }
    return result;
}

} // namespace

bool is_digit(char c, int radix) { return radix >= 2 && digit_value(c) < radix; }

unsigned char from_digit(char c, int radix) {
    return is_digit(c, radix) ? static_cast<unsigned char>(digit_value(c)) : static_cast<unsigned char>(0);
}

char to_digit(unsigned char value, int radix) {
    return radix >= 2 && value < radix && value < digits.size() ? digits[value] : '\0';
}

narrow_string to_hex(char byte) { return hex_of(std::string_view(&byte, 1)); }

narrow_string hex(narrow_string const & bytes) { return hex_of(bytes); }

narrow_string hex(byte_vector const & bytes) { return hex_of(bytes); }

uint64 read(narrow_string const & text, int radix) {
    uint64 result = 0;
    if (radix < 2)
        return result;
    for (char const c : text) {
        int const value = digit_value(c);
        if (value >= 16)
            break;
        result = result * static_cast<uint64>(radix) + static_cast<uint64>(value);
    }
    return result;
}

narrow_string write(uint64 value, int radix, int width) {
    if (radix < 2)
        return {};
    char buffer[64];
    std::string_view const number = digits_of(value, radix, buffer);
    auto const least = static_cast<std::size_t>(std::max(width, 0));
    if (least <= number.size())
        return narrow_string(number);
    narrow_string result(least - number.size(), '0');
    return result.append(number);
}

} // namespace un
