#pragma once

#include "socle/platform/system_code.h"

#include <cerrno>

namespace platform::posix {

/// How a call to the host ended: well, or with an `errno`. True for a failure.
class [[nodiscard]] host_error {
public:
    constexpr host_error() = default;
    constexpr explicit host_error(int error) : error_(error) {}

    /// Why the call before failed.
    static host_error last() { return host_error(errno); }
    /// The same if `failed`.
    static host_error last_if(bool failed) { return failed ? last() : host_error(); }

    constexpr int value() const { return error_; }
    constexpr explicit operator bool() const { return error_ != 0; }
    friend constexpr bool operator==(host_error, host_error) = default;
    friend constexpr bool operator==(host_error error, int value) { return error.error_ == value; }

private:
    int error_ = 0;
};

/// Throws a failure.
inline void require(host_error error) {
    if (error)
        throw error;
}
/// Throws why the call before failed, unless it worked.
inline void require(bool worked) { require(host_error::last_if(!worked)); }

/// Whether a path leads to nothing, or into a loop of links.
constexpr bool leads_nowhere(host_error error) { return error == ENOENT || error == ELOOP; }

/// Whether an error says something of the path, and not of what the process has left.
bool is_about_path(host_error error);

/// The one way from the host's errors to the system's codes.
system_code code_of(host_error error);

inline system_code last_code() { return code_of(host_error::last()); }
inline system_code last_code_if(bool failed) { return code_of(host_error::last_if(failed)); }

} // namespace platform::posix
