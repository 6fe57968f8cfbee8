#pragma once

#include "socle/command/element.h"

namespace command {

/// The arguments of a program. Declare options on it and call `digest` once; then it holds the positional parameters in
/// order, as a vector, and the options hold their values.
///
/// An argument that starts with "-" is an option: its whole name, and its value behind a "=" if it has one. What a
/// second "=" would cut off is dropped. Every other argument is a positional parameter, the empty one too.
class SOCLE_API line : public std::vector<narrow_string> {
public:
    /// Copies the `argc` strings of `argv`, the program's name at index 0 included.
    line(int argc, char const * const * argv);

    /// Registers an option of the caller's, which must outlive the use of this line. `command::option` does it itself.
    void add(command::element * element);

    /// Takes all arguments one by one; a later one overrides an earlier one, and a second call repeats all effects.
    ///
    /// Throws a `command::exception` with the origin "command": `unknown parameter "--x=1"` for an option that is not
    /// declared, with the arguments before it taken, and `required option "--x" not found on command line` at the end.
    void digest();

    /// Prints the options on the standard output, under a head line with `title`.
    void show_options(narrow_string const & title) const;

    /// The registered elements, in the order of their registration.
    std::vector<command::element *> const & options() const noexcept { return options_; }
    /// The number of arguments, the program's name included.
    int argc() const noexcept { return argc_; }
    /// All arguments, the program's name at index 0.
    std::vector<narrow_string> const & argv() const noexcept { return argv_; }

private:
    void verify() const;

    std::vector<command::element *> options_;
    int argc_;
    std::vector<narrow_string> argv_;
};

} // namespace command
