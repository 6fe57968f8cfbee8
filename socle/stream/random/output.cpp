#include "socle/stream/random/output.h"

namespace stream::random {

output::~output() = default;

} // namespace stream::random
