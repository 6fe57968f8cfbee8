#pragma once

#include <socle/basic/types.h>

/// What is wrong with how the program was called.
class usage_error {
public:
    explicit usage_error(narrow_string words) : words_(std::move(words)) {}
    narrow_string const & words() const { return words_; }

private:
    narrow_string words_;
};

/// What the exception that is handled says, with the host's words for its code, and without the path in the library's
/// spelling. To be called where something was caught.
narrow_string current_failure();

/// Runs a program: what `run` returns is its exit status, 1 if it throws, and 2 for a usage error.
int run_program(char const * name, int (*run)(int, char **), int argc, char ** argv);
