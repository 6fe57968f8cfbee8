#include "socle/stream/limited_input.h"

#include <algorithm>
#include <typeinfo>

namespace stream {

limited_input::limited_input(input & stream, uint64 limit) : direct_input(stream), limit_(limit), left_(limit) {}

limited_input::~limited_input() = default;

bool limited_input::seek(uint64 where) {
    if (where > limit_)
        throw exception("cannot seek past the end of the stream", "stream::limited_input");
    bool const moved = under().seek(where);
    left_ = limit_ - where;
    return moved;
}

uint64 limited_input::size() const { return limit_; }

void limited_input::unread(char const * data, uint32 count) {
    direct_input::unread(data, count);
    give_back(count);
}

void limited_input::unread(char byte) {
    direct_input::unread(byte);
    give_back(1);
}

uint32 limited_input::_read(char * buffer, uint32 count) {
    auto const wanted = static_cast<uint32>(std::min<uint64>(count, left_));
    if (wanted == 0)
        return 0;
    left_ -= wanted;
    return std::min(direct_input::_read(buffer, wanted), wanted);
}

int limited_input::_read() {
    if (left_ == 0)
        return -1;
    --left_;
    return direct_input::_read();
}

uint64 limited_input::_skip(uint64 count) {
    uint64 const wanted = std::min(count, left_);
    if (wanted == 0)
        return 0;
    uint64 const skipped = std::min(direct_input::_skip(wanted), wanted);
    left_ -= skipped;
    return skipped;
}

bool limited_input::_ours() const { return typeid(*this) == typeid(limited_input); }

std::span<char const> limited_input::_lend() {
    auto const held = direct_input::_lend();
    return held.first(static_cast<std::size_t>(std::min<uint64>(held.size(), left_)));
}

void limited_input::_take(uint64 count) {
    _take_beneath(count);
    left_ -= count;
}

/// As much may be read again; a limit near 2^64 cannot be passed.
void limited_input::give_back(uint64 count) { left_ += std::min(count, all_ones - left_); }

} // namespace stream
