#pragma once

#include "socle/io/exception.h"

#include <string>

namespace support {

/// Origin and words of an exception, without a path and what follows it.
inline std::string words_of(un::exception const & e) {
    return e.origin() + ": " + e.message().substr(0, e.message().find(" \""));
}

/// What a call throws of this type, or "nothing".
template <class Exception>
std::string raised_as(auto && call) {
    try {
        call();
    } catch (Exception const & e) {
        return words_of(e);
    }
    return "nothing";
}

/// The `io::exception` that a call throws, with the system's code; or the empty text.
std::string raised_with_code(auto && call) {
    try {
        call();
    } catch (io::exception const & e) {
        return words_of(e) + ": " + std::to_string(e.error());
    }
    return "";
}

} // namespace support
