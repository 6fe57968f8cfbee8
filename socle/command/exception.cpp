#include "socle/command/exception.h"

namespace command {

exception::~exception() = default;

exception * exception::Clone() const { return new exception(message(), origin()); }

} // namespace command
