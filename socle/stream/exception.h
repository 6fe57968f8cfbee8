#pragma once

#include "socle/un/exception.h"

namespace stream {

/// Raised by the byte streams; raised again it arrives as a `stream::exception`.
class SOCLE_API exception : public un::exception {
public:
    using un::exception::exception;
    ~exception() override;

    [[noreturn]] void Raise() const override;
    exception * Clone() const override;
};

} // namespace stream
