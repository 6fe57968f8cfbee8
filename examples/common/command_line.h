#pragma once

#include "failure.h"

#include <socle/command/element.h>

#include <deque>
#include <vector>

/// A command line as people know it, on top of the library's: a value may also be the next argument, behind "--" there
/// are operands only, "-" is an operand, and a value is never empty.
class command_line {
public:
    /// What the help says around the list of options.
    struct description {
        narrow_string program, operands, purpose, examples, statuses;
    };

    command_line(int argc, char const * const * argv, description const & about);
    command_line(command_line const &) = delete;
    command_line & operator=(command_line const &) = delete;

    /// Registers an element; one with the name of a value takes a value.
    void add(command::element * element, narrow_string const & value_name);

    /// Reads all arguments into the options, and gives the operands. Throws a `usage_error`.
    std::vector<narrow_string> read();

    /// For an element that takes a value, within its `parse`.
    narrow_string next_value();

    /// Prints the help, or the version.
    void show_help() const;
    void show_version() const;

private:
    struct declared {
        command::element * element;
        narrow_string value_name;
    };
    declared const * find(narrow_string const & name) const;

    std::vector<narrow_string> arguments_;
    description about_;
    std::vector<declared> declared_;
    /// In the order of their options. They do not go through the library's line, which ends a value at a "=".
    std::deque<narrow_string> values_;
};

/// An option without a value.
class flag : public command::element {
public:
    flag(command_line & line, narrow_string const & names, narrow_string const & description);

    void parse(narrow_string const & text) override;
    bool operator()() const { return found(); }
};

/// An option with a value, and with each of its values if it is given several times.
class text : public command::element {
public:
    text(command_line & line, narrow_string const & names, narrow_string const & value_name,
         narrow_string const & description);

    void parse(narrow_string const & text) override;
    /// The last one; empty if there is none.
    narrow_string operator()() const { return values_.empty() ? narrow_string() : values_.back(); }
    std::vector<narrow_string> const & all() const { return values_; }

private:
    command_line & line_;
    std::vector<narrow_string> values_;
};

/// The parts of a list with commas.
std::vector<narrow_string> parts_of_list(narrow_string const & list);
