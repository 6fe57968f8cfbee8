#pragma once

#include "socle/basic/exception.h"

namespace nio {

/// Thrown by the wide family. Like its base, it does not derive from `std::exception`.
class SOCLE_API exception : public basic::exception {
public:
    /// What went wrong, in words.
    explicit exception(narrow_string const & message);
    exception(exception const &);
    exception & operator=(exception const &);
    ~exception();
};

} // namespace nio
