#pragma once

#include "socle/command/element.h"

namespace command {

class line;

/// An option with a value of one of five kinds, which differ in what an argument does to it:
/// - `bool` becomes its own negation, so a second argument restores it;
/// - `char` becomes the first byte of the text, NUL if that is empty;
/// - `int` and `unsigned int` become the low 32 bits of `un::read(text, 10)`;
/// - `narrow_string` becomes the text.
template <class T>
class SOCLE_API option : public element {
public:
    /// Registers this object with `line`, which it must outlive. `value` is the default.
    option(command::line & line, narrow_string const & names, T const & value, narrow_string const & description);
    /// A copy is registered nowhere.
    option(option const &);
    option & operator=(option const &);
    ~option() override;

    /// Sets the value from the text behind the "=", as told above.
    void parse(narrow_string const & text) override;

    /// The value.
    T & operator()() noexcept;

private:
    T value_;
};

// No member is inline: the library's instances are all there are, and not every system exports what is inline.
extern template class option<bool>;
extern template class option<char>;
extern template class option<int>;
extern template class option<unsigned int>;
extern template class option<narrow_string>;

} // namespace command
