#pragma once

#include "socle/un/exception.h"

namespace any {

/// Thrown by the text classes. `Raise` is the inherited one, which throws a `un::exception`.
class SOCLE_API exception : public un::exception {
public:
    using un::exception::exception;
    ~exception() override;

    /// Returns a copy on the heap, which the caller deletes.
    exception * Clone() const override;
};

} // namespace any
