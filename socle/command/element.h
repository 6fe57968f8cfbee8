#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace command {

/// An option of a program: its names, its description and whether it was seen. The base of `command::option` and of
/// options of the program's own, which are the only ones that can be required.
class SOCLE_API element {
public:
    /// `names` are the alternative names with their dashes, separated by vertical bars: "--string|--str|-s".
    element(narrow_string const & names, narrow_string const & description, bool required);
    element(element const &) = default;
    element & operator=(element const &) = default;
    virtual ~element();

    /// Takes the text behind the "=" of an argument, empty if there is none. Does nothing by default; a class that
    /// overrides it calls `found(true)`.
    virtual void parse(narrow_string const & text);

    /// Whether `name` is one of the names; case counts.
    bool matches(narrow_string const & name) const;

    /// The alternative names.
    std::vector<narrow_string> const & names() const noexcept { return names_; }
    /// The description for `line::show_options`.
    narrow_string const & description() const noexcept { return description_; }
    /// Whether the command line must name this element.
    bool required() const noexcept { return required_; }
    /// Whether an argument has named this element.
    bool found() const noexcept { return found_; }

protected:
    /// Sets what `found()` returns.
    void found(bool seen) noexcept { found_ = seen; }

private:
    std::vector<narrow_string> names_;
    narrow_string description_;
    bool required_;
    bool found_ = false;
};

} // namespace command
