#include "socle/any/exception.h"

namespace any {

exception::~exception() = default;

exception * exception::Clone() const { return new exception(message(), origin()); }

} // namespace any
