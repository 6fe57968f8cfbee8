#pragma once

#include "socle/platform/errors.h"

#include <concepts>

namespace platform {

/// How an operation ended: well, or with the code that GetLastError tells then. True for a failure.
class [[nodiscard]] system_code {
public:
    constexpr system_code() = default;
    /// From a constant of errors.h. Numbers of other types do not convert, least of all an `errno`.
    template <std::same_as<uint32> Code>
    constexpr system_code(Code code) : code_(code) {}

    constexpr uint32 value() const { return code_; }
    constexpr explicit operator bool() const { return code_ != 0; }
    friend constexpr bool operator==(system_code, system_code) = default;

private:
    uint32 code_ = 0;
};

} // namespace platform
