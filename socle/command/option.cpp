#include "socle/command/option.h"

#include "socle/command/line.h"
#include "socle/un/digits.h"

#include <type_traits>

namespace command {

template <class T>
option<T>::option(command::line & line, narrow_string const & names, T const & value, narrow_string const & description)
    : element(names, description, false), value_(value) {
    line.add(this);
}

template <class T>
option<T>::option(option const &) = default;

template <class T>
option<T> & option<T>::operator=(option const &) = default;

template <class T>
option<T>::~option() = default;

template <class T>
void option<T>::parse(narrow_string const & text) {
    if constexpr (std::is_same_v<T, bool>)
        value_ = !value_;
    else if constexpr (std::is_same_v<T, char>)
        value_ = text.empty() ? '\0' : text.front();
    else if constexpr (std::is_same_v<T, narrow_string>)
        value_ = text;
    else
        value_ = static_cast<T>(un::read(text, 10));
    found(true);
}

template <class T>
T & option<T>::operator()() noexcept {
    return value_;
}

template class option<bool>;
template class option<char>;
template class option<int>;
template class option<unsigned int>;
template class option<narrow_string>;

} // namespace command
