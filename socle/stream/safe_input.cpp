#include "socle/stream/safe_input.h"

namespace stream {

namespace {

void check(bool whole) {
    if (!whole)
        throw exception("unexpected end of file", "stream::safe_input");
}

} // namespace

safe_input::safe_input(input & stream) : direct_input(stream) {}

safe_input::~safe_input() = default;

uint32 safe_input::_read(char * buffer, uint32 count) {
    check(direct_input::_read(buffer, count) >= count);
    return count;
}

int safe_input::_read() {
    int const byte = direct_input::_read();
    check(byte != -1);
    return byte;
}

uint64 safe_input::_skip(uint64 count) {
    check(direct_input::_skip(count) >= count);
    return count;
}

} // namespace stream
