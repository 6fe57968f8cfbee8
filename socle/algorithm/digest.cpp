#include "socle/algorithm/digest.h"

namespace algorithm {

digest::~digest() = default;

void digest::hook(uint32, uint32) {}

void digest::reset() {}

void digest::finish() {}

} // namespace algorithm
