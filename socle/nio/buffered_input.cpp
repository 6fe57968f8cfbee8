#include "socle/nio/buffered_input.h"

#include <algorithm>
#include <typeinfo>

namespace nio {

buffered_input::buffered_input(input & source, uint32 capacity)
    : source_(&source), buffer_(std::max<uint32>(capacity, 1)), capacity_(buffer_.size()), start_(source.tell()) {}

buffered_input::~buffered_input() = default;

uint64 buffered_input::tell() const { return start_ + cursor_; }

uint64 buffered_input::size() const { return source_->size(); }

uint32 buffered_input::_read(char * buffer, uint32 size) {
    uint32 const given = hand_out(buffer, size);
    uint32 const wanted = size - given;
    if (wanted == 0)
        return given;
    if (wanted >= capacity_ / 2) {
        uint32 const got = std::min(source_->read(buffer + given, wanted), wanted);
        start_ += cursor_ + uint64(got);
        cursor_ = fill_ = 0;
        return given + got;
    }
    refill();
    return given + hand_out(buffer + given, wanted);
}

uint32 buffered_input::hand_out(char * buffer, uint32 size) {
    uint32 const count = std::min(size, fill_ - cursor_);
    if (count > 0)
        std::memcpy(buffer, buffer_.data() + cursor_, count);
    cursor_ += count;
    return count;
}

void buffered_input::refill() {
    std::memmove(buffer_.data(), buffer_.data() + cursor_, fill_ - cursor_);
    fill_ -= cursor_;
    start_ += cursor_;
    cursor_ = 0;
    uint32 const room = capacity_ - fill_;
    fill_ += std::min(source_->read(buffer_.data() + fill_, room), room);
}

bool buffered_input::_ours() const { return typeid(*this) == typeid(buffered_input); }

std::span<char const> buffered_input::_lend() {
    return _ours() ? std::span<char const>(buffer_.data() + cursor_, fill_ - cursor_) : std::span<char const>();
}

void buffered_input::_take(uint64 count) { cursor_ += static_cast<uint32>(count); }

} // namespace nio
