#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <exception>

namespace io {

/// What an exception tells. What its class does not tell is empty or 0.
struct description {
    /// The whole message: `message()`, else `text()`, else `what()`.
    narrow_string message;
    /// The words in front of the path, such as "cannot open"; the whole message where no path is told.
    narrow_string words;
    /// The path of what failed, in the ANSI page.
    narrow_string path;
    /// Which class threw.
    narrow_string origin;
    /// `error()`, else `code()`.
    int code = 0;
};

/// Describes an exception of either line, another `std::exception`, or any other, as "unknown exception". Nothing in
/// the result refers to the exception or its class, which may be that of a plug-in. Null is described by nothing.
SOCLE_API description describe(std::exception_ptr const & thrown);

} // namespace io
