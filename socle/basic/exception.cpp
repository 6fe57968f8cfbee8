#include "socle/basic/exception.h"

namespace basic {

exception::exception(narrow_string const & message) : message_(message) {}

exception::exception(exception const &) = default;

exception & exception::operator=(exception const &) = default;

exception::~exception() = default;

} // namespace basic
