#include "socle/stream/random/input.h"

#include <algorithm>

namespace stream::random {

input::~input() = default;

void input::unread(char const *, uint32 count) {
    uint64 const position = tell();
    if (count > position)
        throw exception("cannot unread past the start", "stream::random::input");
    seek(position - count);
}

void input::unread(char byte) { unread(&byte, 1); }

uint64 input::skip(uint64 count) {
    uint64 const position = tell();
    uint64 const end = size();
    uint64 const passed = position < end ? std::min(count, end - position) : 0;
    seek(position + passed);
    return passed;
}

} // namespace stream::random
