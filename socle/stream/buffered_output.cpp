#include "socle/stream/buffered_output.h"

#include <algorithm>
#include <cstring>
#include <typeinfo>

namespace stream {

buffered_output::buffered_output(output & stream, uint32 size)
    : filter_output(stream), buffer_size_(std::max<uint32>(size, 1)), buffer_(new char[buffer_size_]),
      base_(stream.tell()) {
    memory_ = {buffer_.get(), 0};
}

buffered_output::~buffered_output() {
    try {
        buffered_output::flush();
    } catch (...) {
    }
}

void buffered_output::end() { flush(); }

void buffered_output::write(char const * data, uint32 count) {
    if (count >= buffer_size_) {
        flush_buffer();
        beneath().write(data, count);
        base_ += count;
        return;
    }
    if (count == 0)
        return;
    if (count > buffer_size_ - filled())
        flush_buffer();
    std::memcpy(buffer_.get() + filled(), data, count);
    memory_.next += count;
    open();
}

void buffered_output::write(narrow_string const & text) { output::write(text); }

void buffered_output::flush() { flush_buffer(); }

uint64 buffered_output::tell() const { return base_ + filled(); }

void buffered_output::copy_from(input & source) {
    flush_buffer();
    move_beneath([&] { beneath().copy_from(source); });
}

void buffered_output::resize(uint64 new_size) {
    if (new_size > base_) {
        write_held(std::min(filled(), new_size - base_));
        move_beneath([&] { beneath().resize(new_size); });
    } else {
        // If the stream beneath refuses, nothing is dropped.
        beneath().resize(new_size);
        base_ = new_size;
        memory_.next = 0;
    }
}

void buffered_output::flush_buffer() { write_held(filled()); }

/// Writes one byte where the buffer is full, or not open to single bytes.
void buffered_output::write_on(char byte) {
    if (filled() == buffer_size_)
        flush_buffer();
    open();
    memory_.bytes[memory_.next++] = byte;
}

/// Writes the first `count` bytes of what is held and drops the rest.
void buffered_output::write_held(uint64 count) {
    if (count > 0)
        beneath().write(buffer_.get(), static_cast<uint32>(count));
    base_ += count;
    memory_.next = 0;
}

/// Does what moves the stream beneath, with nothing held, and takes the base from there, also if that fails half-way.
template <class Act>
void buffered_output::move_beneath(Act act) {
    try {
        act();
    } catch (...) {
        base_ = beneath().tell();
        throw;
    }
    base_ = beneath().tell();
}

bool buffered_output::_ours() const { return typeid(*this) == typeid(buffered_output); }

/// Lets others store in the buffer. A block as large as the whole of it goes past it, and must not find room.
void buffered_output::open() {
    if (_ours())
        memory_.limit = buffer_size_ - 1;
}

} // namespace stream
