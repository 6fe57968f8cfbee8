#include "socle/un/tokenizer.h"

#include <algorithm>

namespace un {

tokenizer::tokenizer(narrow_string const & text, char const * delimiters) { cut(text, delimiters); }

tokenizer::tokenizer(narrow_string const & text, char delimiter) { cut(text, {&delimiter, 1}); }

void tokenizer::init(narrow_string const & text, char const * delimiters) { cut(text, delimiters); }

void tokenizer::cut(std::string_view text, std::string_view delimiters) {
    // Searching for one character is a good deal faster than searching for one of a set.
    auto const find = [&](std::size_t start) {
        return delimiters.size() == 1 ? text.find(delimiters[0], start) : text.find_first_of(delimiters, start);
    };
    std::vector<narrow_string> tokens;
    if (delimiters.size() == 1)
        tokens.reserve(1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), delimiters[0])));
    std::size_t start = 0;
    for (auto found = find(start); found != text.npos; found = find(start)) {
        tokens.emplace_back(text.substr(start, found - start));
        start = found + 1;
    }
    tokens.emplace_back(text.substr(start));
    swap(tokens);
}

} // namespace un
