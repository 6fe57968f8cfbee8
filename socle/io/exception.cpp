#include "socle/io/exception.h"

namespace io {

exception::exception(narrow_string const & message, narrow_string const & origin, int error)
    : un::exception(message, origin), error_(error) {}

exception::~exception() = default;

void exception::Raise() const { throw exception(*this); }

exception * exception::Clone() const { return new exception(message(), origin(), error_); }

} // namespace io
