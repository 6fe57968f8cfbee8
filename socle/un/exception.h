#pragma once

#include "socle/basic/types.h"
#include "socle/qpthr/exception.h"

namespace un {

/// What went wrong and who raised it: the root of all exceptions of `stream`, `any`, `un`, `io` and `command`.
/// `code()` is 0 and `text()` is empty in this whole line.
class SOCLE_API exception : public qpthr::QpUserException {
public:
    /// What went wrong, and who raised it.
    exception(narrow_string const & message, narrow_string const & origin);
    ~exception() override;

    /// Throws a `un::exception`, also from a class below that does not override this.
    [[noreturn]] void Raise() const override;
    exception * Clone() const override;

    /// What went wrong.
    narrow_string const & message() const noexcept { return message_; }
    /// The qualified name of the raising class, or its family's short name.
    narrow_string const & origin() const noexcept { return origin_; }

private:
    narrow_string message_;
    narrow_string origin_;
};

} // namespace un
