#include "socle/stream/buffered_input.h"

#include "socle/stream/output.h"

#include <algorithm>
#include <cstring>
#include <typeinfo>

namespace stream {

buffered_input::buffered_input(input & stream, uint32 size)
    : filter_input(stream), buffer_size_(std::max<uint32>(size, 1)), buffer_(new char[buffer_size_]),
      base_(stream.tell()), capacity_(buffer_size_) {
    memory_ = {buffer_.get(), 0};
}

buffered_input::~buffered_input() {
    try {
        buffered_input::yield();
    } catch (...) {
    }
}

void buffered_input::unread(char const * data, uint32 count) {
    if (count == 0)
        return;
    if (count <= memory_.next) {
        hold(memory_.next - count, filled_);
    } else {
        std::size_t const length = held() + count;
        std::unique_ptr<char[]> grown(new char[length]);
        std::memcpy(grown.get() + count, buffer_.get() + memory_.next, held());
        base_ -= count - memory_.next;
        buffer_ = std::move(grown);
        capacity_ = length;
        hold(0, length);
    }
    std::memmove(buffer_.get() + memory_.next, data, count);
}

void buffered_input::unread(char byte) { unread(&byte, 1); }

void buffered_input::yield() {
    if (held() == 0)
        return;
    // From the end, as far as one count reaches.
    while (held() > 0) {
        auto const block = static_cast<uint32>(std::min<uint64>(held(), UINT32_MAX));
        under().unread(buffer_.get() + filled_ - block, block);
        hold(memory_.next, filled_ - block);
    }
    pass_beneath(0);
}

uint32 buffered_input::_read(char * buffer, uint32 count) {
    auto const given = static_cast<uint32>(std::min<uint64>(count, held()));
    if (given > 0) {
        std::memcpy(buffer, buffer_.get() + memory_.next, given);
        memory_.next += given;
    }
    uint32 const wanted = count - given;
    // Checked first: with a buffer of 1, `wanted >= buffer_size_ / 2` holds for 0 as well.
    if (wanted == 0)
        return given;
    if (wanted >= buffer_size_ / 2) {
        uint32 const got = std::min(filter_input::_read(buffer + given, wanted), wanted);
        pass_beneath(got);
        return given + got;
    }
    refill();
    auto const last = static_cast<uint32>(std::min<uint64>(wanted, held()));
    std::memcpy(buffer + given, buffer_.get() + memory_.next, last);
    memory_.next += last;
    return given + last;
}

int buffered_input::_read() {
    if (held() == 0)
        refill();
    return held() == 0 ? -1 : static_cast<unsigned char>(memory_.bytes[memory_.next++]);
}

uint64 buffered_input::_skip(uint64 count) {
    auto const passed = std::min<uint64>(count, held());
    memory_.next += passed;
    uint64 const wanted = count - passed;
    if (wanted == 0)
        return passed;
    uint64 const skipped = std::min(filter_input::_skip(wanted), wanted);
    pass_beneath(skipped);
    return passed + skipped;
}

uint64 buffered_input::_tell() const { return base_ + memory_.next; }

void buffered_input::refill() {
    std::size_t const rest = held();
    if (capacity_ >= buffer_size_) {
        std::memmove(buffer_.get(), buffer_.get() + memory_.next, rest);
    } else {
        std::unique_ptr<char[]> grown(new char[buffer_size_]);
        std::memcpy(grown.get(), buffer_.get() + memory_.next, rest);
        buffer_ = std::move(grown);
        capacity_ = buffer_size_;
    }
    base_ += memory_.next;
    hold(0, rest);
    if (rest >= buffer_size_)
        return;
    auto const room = static_cast<uint32>(buffer_size_ - rest);
    hold(0, rest + std::min(filter_input::_read(buffer_.get() + rest, room), room));
}

uint64 buffered_input::_copy(output & target, uint64 count) {
    if (count == all_ones)
        count = size() - tell();
    uint64 copied = 0;
    while (copied < count) {
        int const byte = _read();
        if (byte == -1)
            break;
        target.write(static_cast<char>(byte));
        ++copied;
    }
    target.flush();
    return copied;
}

bool buffered_input::_ours() const { return typeid(*this) == typeid(buffered_input); }

/// Holds the bytes of the buffer from `first` to before `end`.
void buffered_input::hold(uint64 first, uint64 end) {
    memory_.bytes = buffer_.get();
    memory_.next = first;
    memory_.limit = _ours() ? end : 0;
    filled_ = end;
}

/// Goes on with an empty buffer, `count` bytes after what was held.
void buffered_input::pass_beneath(uint64 count) {
    base_ += memory_.next + count;
    hold(0, 0);
}

} // namespace stream
