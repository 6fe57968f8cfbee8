#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <string_view>

namespace un {

/// The pieces of a text between delimiter characters, in order, as a vector. Delimiters are never merged, so n of them
/// always make n + 1 tokens, some perhaps empty.
class SOCLE_API tokenizer : public std::vector<narrow_string> {
public:
    /// Cuts at every character of `delimiters`; without any, the whole text is one token.
    tokenizer(narrow_string const & text, char const * delimiters);
    tokenizer(narrow_string const & text, char delimiter);

    /// Drops the tokens and cuts `text`. `text` may be one of them.
    void init(narrow_string const & text, char const * delimiters);

private:
    void cut(std::string_view text, std::string_view delimiters);
};

} // namespace un
