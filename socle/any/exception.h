#pragma once

#include "socle/un/exception.h"

namespace any {

/// Raised by the text classes. `Raise` is the inherited one: raised again it arrives as a `un::exception`.
class SOCLE_API exception : public un::exception {
public:
    using un::exception::exception;
    ~exception() override;

    exception * Clone() const override;
};

} // namespace any
