#pragma once

#include "socle/un/exception.h"

namespace io {

/// Thrown by the file-system model: a `un::exception` with the system's error code beside the words.
class SOCLE_API exception : public un::exception {
public:
    /// `error` is 0 where the failure did not come from the operating system.
    exception(narrow_string const & message, narrow_string const & origin, int error);
    ~exception() override;

    /// Throws a copy of this object, as an `io::exception`.
    [[noreturn]] void Raise() const override;
    /// Returns a copy on the heap, which the caller deletes.
    exception * Clone() const override;

    /// The system's code, or 0.
    int error() const noexcept { return error_; }

private:
    int error_;
};

} // namespace io
