#pragma once

#include "socle/basic/exception.h"

namespace nio {

/// Raised by the wide family. Like its base, no `std::exception`.
class SOCLE_API exception : public basic::exception {
public:
    /// What went wrong, in words.
    explicit exception(narrow_string const & message);
    exception(exception const &);
    exception & operator=(exception const &);
    ~exception();
};

} // namespace nio
