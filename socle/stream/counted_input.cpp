#include "socle/stream/counted_input.h"

#include <algorithm>
#include <typeinfo>

namespace stream {

counted_input::counted_input(input & stream, uint64 start) : direct_input(stream), count_(start) {}

counted_input::~counted_input() = default;

uint64 counted_input::size() const { return count_; }

void counted_input::unread(char const * data, uint32 count) {
    direct_input::unread(data, count);
    count_ -= count;
}

void counted_input::unread(char byte) {
    direct_input::unread(byte);
    --count_;
}

uint32 counted_input::_read(char * buffer, uint32 count) {
    uint32 const got = std::min(direct_input::_read(buffer, count), count);
    count_ += got;
    return got;
}

int counted_input::_read() {
    int const byte = direct_input::_read();
    if (byte != -1)
        ++count_;
    return byte;
}

uint64 counted_input::_skip(uint64 count) {
    uint64 const skipped = std::min(direct_input::_skip(count), count);
    count_ += skipped;
    return skipped;
}

uint64 counted_input::_tell() const { return count_; }

bool counted_input::_ours() const { return typeid(*this) == typeid(counted_input); }

void counted_input::_take(uint64 count) {
    _take_beneath(count);
    count_ += count;
}

} // namespace stream
