#pragma once

#include "socle/un/exception.h"

namespace stream {

/// Thrown by the byte streams.
class SOCLE_API exception : public un::exception {
public:
    using un::exception::exception;
    ~exception() override;

    /// Throws a copy of this object, as a `stream::exception`.
    [[noreturn]] void Raise() const override;
    /// Returns a copy that the caller owns.
    exception * Clone() const override;
};

} // namespace stream
