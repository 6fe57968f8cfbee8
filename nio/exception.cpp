#include "nio/exception.h"

namespace nio {

exception::exception(narrow_string const & message) : basic::exception(message) {}

exception::exception(exception const &) = default;

exception & exception::operator=(exception const &) = default;

exception::~exception() = default;

} // namespace nio
