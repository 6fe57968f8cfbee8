#pragma once

#include "socle/basic/types.h"
#include "socle/qpthr/exception.h"

namespace un {

/// What went wrong and which class threw: the root of all exceptions of `stream`, `any`, `un`, `io` and `command`.
/// `code()` is 0 and `text()` is empty in all of them.
class SOCLE_API exception : public qpthr::QpUserException {
public:
    /// Takes what went wrong, and which class threw.
    exception(narrow_string const & message, narrow_string const & origin);
    ~exception() override;

    /// Throws a copy of this object, as a `un::exception`; a derived class that does not override this loses its own
    /// part.
    [[noreturn]] void Raise() const override;
    /// Returns a copy on the heap, which the caller deletes.
    exception * Clone() const override;

    /// What went wrong.
    narrow_string const & message() const noexcept { return message_; }
    /// The qualified name of the class that threw, or its family's short name.
    narrow_string const & origin() const noexcept { return origin_; }

private:
    narrow_string message_;
    narrow_string origin_;
};

} // namespace un
