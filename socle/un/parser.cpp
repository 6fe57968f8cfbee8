#include "socle/un/parser.h"

#include "socle/un/digits.h"

namespace un {

namespace {

/// What lies beyond the reach of a 32-bit cursor counts as the end.
uint32 cursor(std::size_t found) { return found < parser::npos ? static_cast<uint32>(found) : parser::npos; }

} // namespace

parser::parser(narrow_string const & text, uint32 position) : text_(text), position_(position) {}

narrow_string parser::string(char const * delimiters) {
    if (eos())
        return {};
    std::size_t const found = text_.find_first_of(delimiters, position_);
    narrow_string result = text_.substr(position_, found == narrow_string::npos ? found : found - position_);
    position_ = cursor(found);
    return result;
}

uint64 parser::number(int radix) {
    uint64 result = 0;
    while (position_ < text_.size() && !eos() && is_digit(text_[position_], radix)) {
        result = result * static_cast<uint64>(radix) + from_digit(text_[position_], 16);
        ++position_;
    }
    return result;
}

void parser::skip_through(char const * characters) {
    if (!eos())
        position_ = cursor(text_.find_first_not_of(characters, position_));
}

void parser::skip_until(char const * characters) {
    if (!eos())
        position_ = cursor(text_.find_first_of(characters, position_));
}

} // namespace un
