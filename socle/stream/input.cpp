#include "socle/stream/input.h"

#include "socle/nio/in_blocks_internal.h"
#include "socle/nio/lending_internal.h"
#include "socle/stream/copy_in_order_internal.h"
#include "socle/stream/output.h"

#include <algorithm>
#include <cstring>

namespace stream {

uint32 const input::buf_size;

input::~input() = default;

uint32 input::read(char * buffer, uint32 count) {
    if (memory_.open() && count <= memory_.limit - memory_.next) {
        copy_in_order(buffer, memory_.bytes + memory_.next, count);
        memory_.next += count;
        return count;
    }
    auto const given = static_cast<uint32>(std::min<uint64>(count, pending()));
    if (given > 0) {
        std::memcpy(buffer, pushback_.data() + pushback_pos_, given);
        pass(given);
        if (given == count)
            return count;
    }
    // `_read` is not called while bytes given back remain, not even for 0 bytes: it would open the window.
    if (pending() > 0)
        return 0;
    // A source that claims more than it was asked for is not believed.
    uint32 const wanted = count - given;
    return given + std::min(_read(buffer + given, wanted), wanted);
}

uint64 input::tell() const { return pending() > 0 ? pushback_at_ + pushback_pos_ : _tell(); }

bool input::seek(uint64) { throw exception("cannot seek in a sequential stream", "stream::input"); }

int input::read_on() {
    if (pending() == 0)
        return _read();
    int const byte = pushback_[pushback_pos_];
    pass(1);
    return byte;
}

void input::unread(char const * data, uint32 count) {
    // A class of the library that comes here cannot seek, and need not throw and catch to say so.
    if (!nio::lending::ours(*this)) {
        try {
            if (seek(_tell() - count))
                return;
        } catch (exception const &) {
        }
    }
    if (count == 0)
        return;
    if (count <= pushback_pos_) {
        pushback_pos_ -= count;
    } else {
        std::size_t const held = pending();
        std::size_t const length = held + count;
        uint64 const here = tell(); // before anything changes, as it may throw
        pushback_.resize(length);
        std::memmove(pushback_.data() + count, pushback_.data() + pushback_pos_, held);
        pushback_size_ = length;
        pushback_pos_ = 0;
        pushback_at_ = here - count;
    }
    std::memcpy(pushback_.data() + pushback_pos_, data, count);
    memory_.limit = 0;
}

void input::unread(char byte) { unread(&byte, 1); }

uint64 input::skip(uint64 count) {
    auto const given = std::min<uint64>(count, pending());
    if (pending() > 0) {
        pass(given);
        if (given == count)
            return count;
    }
    return given + std::min(_skip(count - given), count - given);
}

uint64 input::copy_to(output & target) {
    std::size_t const held = pending();
    if (held > 0) {
        nio::in_blocks(reinterpret_cast<char const *>(pushback_.data() + pushback_pos_), held,
                       [&](char const * data, uint32 count) { target.write(data, count); });
        release_data();
    }
    return held + _copy_to(target);
}

void input::close() {}

void input::mark() { mark_position_ = tell(); }

uint64 input::drift() const { return tell() - mark_position_; }

uint32 input::_read(char * buffer, uint32 count) {
    uint32 done = 0;
    while (done < count) {
        int const byte = read();
        if (byte == -1)
            break;
        buffer[done++] = static_cast<char>(byte);
    }
    return done;
}

uint64 input::_skip(uint64 count) {
    scratch_.resize(buf_size);
    auto * const block = reinterpret_cast<char *>(scratch_.data());
    uint64 total = 0;
    while (total < count) {
        auto const wanted = static_cast<uint32>(std::min<uint64>(count - total, buf_size));
        uint32 const got = std::min(read(block, wanted), wanted);
        if (got == 0)
            break;
        total += got;
    }
    return total;
}

uint64 input::_copy_to(output & target) {
    scratch_.resize(buf_size);
    auto * const block = reinterpret_cast<char *>(scratch_.data());
    uint64 total = 0;
    for (;;) {
        // Whole blocks that are already in memory go straight to a sink of the library. A caller's sink might look at
        // the address, or read on from this stream.
        auto const held = _lend();
        if (held.size() >= buf_size && nio::lending::apart(target, held.first(buf_size))) {
            _take(buf_size);
            target.write(held.data(), buf_size);
            total += buf_size;
            continue;
        }
        uint32 const got = std::min(read(block, buf_size), buf_size);
        if (got == 0)
            return total;
        target.write(block, got);
        total += got;
    }
}

void input::release_data() {
    pushback_.clear();
    pushback_size_ = 0;
    pushback_pos_ = 0;
}

void input::pass(uint64 count) {
    pushback_pos_ += static_cast<std::size_t>(count);
    if (pushback_pos_ == pushback_size_)
        release_data();
}

std::span<char const> input::_lend() {
    if (memory_.open())
        return memory_.window();
    if (pending() == 0 || !nio::lending::ours(*this))
        return {};
    return {reinterpret_cast<char const *>(pushback_.data() + pushback_pos_), pending()};
}

void input::_take(uint64 count) {
    if (pending() > 0)
        pass(count);
    else
        memory_.next += count;
}

} // namespace stream
