#include "socle/stream/transform.h"

namespace stream {

namespace {

[[noreturn]] void refuse(char const * message) { throw exception(message, "stream::transform"); }

} // namespace

transform::~transform() = default;

void transform::begin() {}

void transform::end() {}

uint64 transform::process(input &, output &, uint64) { refuse("partial stream processing is not implemented"); }

uint64 transform::process(input &, output &) { refuse("full stream processing is not implemented"); }

} // namespace stream
