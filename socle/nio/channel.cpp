#include "socle/nio/channel.h"

namespace nio {

channel::~channel() = default;

void channel::begin() {}

void channel::end() {}

uint64 channel::tell() const { return position_; }

bool channel::seek(uint64) { return false; }

uint64 channel::size() const { return all_ones; }

void channel::flush() {}

} // namespace nio
