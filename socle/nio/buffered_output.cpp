#include "socle/nio/buffered_output.h"

#include <algorithm>
#include <typeinfo>

namespace nio {

buffered_output::buffered_output(output & target, uint32 capacity)
    : target_(&target), buffer_(std::max<uint32>(capacity, 1)), capacity_(buffer_.size()) {}

buffered_output::~buffered_output() {
    try {
        buffered_output::flush();
    } catch (...) {
    }
}

void buffered_output::flush() {
    if (used_ == 0)
        return;
    target_->write(buffer_.data(), used_);
    start_ += used_;
    used_ = 0;
}

uint64 buffered_output::tell() const { return start_ + used_; }

uint64 buffered_output::size() const { return tell(); }

void buffered_output::_write(char const * data, uint32 size) {
    if (size >= capacity_) {
        flush();
        target_->write(data, size);
        start_ += size;
        return;
    }
    if (size == 0)
        return;
    if (size > capacity_ - used_)
        flush();
    std::memcpy(buffer_.data() + used_, data, size);
    used_ += size;
}

bool buffered_output::_ours() const { return typeid(*this) == typeid(buffered_output); }

std::span<char> buffered_output::_room() {
    // A block as large as the whole buffer goes past it, and must not find room.
    return _ours() ? std::span<char>(buffer_.data() + used_, std::min(capacity_ - used_, capacity_ - 1))
                   : std::span<char>();
}

void buffered_output::_use(uint64 count) { used_ += static_cast<uint32>(count); }

} // namespace nio
