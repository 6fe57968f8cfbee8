#pragma once

#include "socle/platform/win32/host/system.h"

#include <string>

namespace platform::win32 {

/// Which form a path takes: one that every program takes if it is short, or the one that leaves names as they are.
enum class path_form { plain_if_short, names_as_they_are };

/// A path as the calls of the system take it: absolute, on a volume of the system's, and in the form without a limit
/// if it is long.
class system_path {
public:
    /// Sets the last error if there is none: for an empty path (3), or one with a NUL (123).
    /// A path in the form that leaves names as they are stays as it is.
    explicit system_path(wide_string const & path, path_form form = path_form::plain_if_short);

    explicit operator bool() const { return !text_.empty(); }
    operator wchar_t const *() const { return text_.c_str(); }

private:
    std::wstring text_;
};

/// The absolute form by the rules of the system; empty, with a last error, as above.
std::wstring full_path(wide_string const & path);

/// An absolute path out of the form that leaves names as they are.
std::wstring with_limit(wide_string const & path);

} // namespace platform::win32
