#include "socle/un/exception.h"

namespace un {

exception::exception(narrow_string const & message, narrow_string const & origin)
    : QpUserException(0, nullptr), message_(message), origin_(origin) {}

exception::~exception() = default;

void exception::Raise() const { throw exception(*this); }

exception * exception::Clone() const { return new exception(message_, origin_); }

} // namespace un
