#include "socle/un/structure.h"

namespace un {

structure::~structure() = default;

bool structure::valid() const { return true; }

uint32 structure::read(stream::input &, bool) { return 0; }

uint32 structure::write(stream::output &) const { return 0; }

uint32 structure::size() const { return 0; }

} // namespace un
