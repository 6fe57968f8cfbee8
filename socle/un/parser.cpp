#include "socle/un/parser.h"

#include "socle/un/digit_values_internal.h"

#include <algorithm>
#include <string_view>
#include <type_traits>

namespace un {

namespace {

/// What lies beyond the reach of a 32-bit cursor counts as the end.
uint32 cursor(std::size_t found) { return found < parser::npos ? static_cast<uint32>(found) : parser::npos; }

/// The first character from `start` on that is in the set, or that is not. A set of one is looked for several times as
/// fast.
std::size_t find(std::string_view text, std::size_t start, char const * set, bool in_set) {
    if (set[0] != '\0' && set[1] == '\0')
        return in_set ? text.find(set[0], start) : text.find_first_not_of(set[0], start);
    return in_set ? text.find_first_of(set, start) : text.find_first_not_of(set, start);
}

} // namespace

parser::parser(narrow_string const & text, uint32 position) : text_(text), position_(position) {}

narrow_string parser::string(char const * delimiters) {
    if (eos())
        return {};
    std::size_t const found = find(text_, position_, delimiters, true);
    narrow_string result = text_.substr(position_, found == narrow_string::npos ? found : found - position_);
    position_ = cursor(found);
    return result;
}

uint64 parser::number(int radix) {
    if (radix < 2)
        return 0;
    auto const end = static_cast<uint32>(std::min<std::size_t>(text_.size(), npos));
    auto const read = [&](auto base) {
        uint64 result = 0;
        uint32 at = position_;
        for (char const * const text = text_.data(); at < end; ++at) {
            int const value = digit_value(text[at]);
            if (value >= static_cast<int>(base))
                break;
            result = result * base + static_cast<uint64>(value < 16 ? value : 0);
        }
        position_ = at;
        return result;
    };
    // A compiler multiplies by a number that it knows in less time.
    return radix == 10 ? read(std::integral_constant<uint64, 10>()) : read(static_cast<uint64>(radix));
}

void parser::skip_through(char const * characters) {
    if (!eos())
        position_ = cursor(find(text_, position_, characters, false));
}

void parser::skip_until(char const * characters) {
    if (!eos())
        position_ = cursor(find(text_, position_, characters, true));
}

} // namespace un
