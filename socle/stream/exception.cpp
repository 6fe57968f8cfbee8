#include "socle/stream/exception.h"

namespace stream {

exception::~exception() = default;

void exception::Raise() const { throw exception(*this); }

exception * exception::Clone() const { return new exception(message(), origin()); }

} // namespace stream
