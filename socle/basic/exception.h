#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace basic {

/// The root of the exceptions of `basic` and `nio`: a plain value. A handler for `std::exception` does not catch it.
class SOCLE_API exception {
public:
    /// What went wrong, in words.
    explicit exception(narrow_string const & message);
    exception(exception const &);
    exception & operator=(exception const &);
    ~exception();

    /// The words.
    narrow_string const & message() const noexcept { return message_; }

protected:
    /// For a class that adds to the words while it is made.
    void message(narrow_string const & words) { message_ = words; }

private:
    narrow_string message_;
};

} // namespace basic
