#pragma once

#include "socle/nio/exception.h"

namespace nio {

/// A failed system call. Construct it directly after the call, as it reads the thread's last error.
class SOCLE_API filesystem_exception : public exception {
public:
    /// The message becomes `message (path) code text`, with the code in decimal and the system's text; it stays as it
    /// is for the code of a broken pipe, 109.
    filesystem_exception(narrow_string const & message, wide_string const & path);
    filesystem_exception(filesystem_exception const &);
    filesystem_exception & operator=(filesystem_exception const &);
    ~filesystem_exception();

    /// The system's code.
    uint32 error() const noexcept { return error_; }

private:
    uint32 error_;
};

} // namespace nio
