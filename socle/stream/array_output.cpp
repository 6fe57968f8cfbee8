#include "socle/stream/array_output.h"

#include "socle/stream/copy_in_order_internal.h"
#include "socle/stream/input.h"

#include <algorithm>
#include <functional>
#include <typeinfo>

namespace stream {

namespace {

[[noreturn]] void fail(char const * message) { throw exception(message, "stream::array_output"); }

char const * const past_the_end = "cannot write past the end of a fixed-size buffer";

} // namespace

array_output::array_output(char * data, uint32 length, uint32 start) : length_(length) { memory_ = {data, start}; }

array_output::array_output(un::array<char> & array, uint32 start) : array_output(array.data(), array.size(), start) {}

array_output::~array_output() = default;

void array_output::write_on(char byte) {
    if (left() == 0)
        fail(past_the_end);
    open();
    memory_.bytes[memory_.next++] = byte;
}

void array_output::write(char const * data, uint32 count) {
    auto const fitting = static_cast<uint32>(std::min<uint64>(count, left()));
    copy_in_order(memory_.bytes + memory_.next, data, fitting);
    memory_.next += fitting;
    if (fitting < count)
        fail(past_the_end);
    open();
}

uint64 array_output::tell() const { return memory_.next; }

void array_output::copy_from(input & source) {
    uint64 const size = source.size();
    if (size > left())
        fail("input stream is too large to copy into the array");
    if (size == 0)
        return;
    auto const wanted = static_cast<uint32>(size);
    memory_.next += std::min(source.read(memory_.bytes + memory_.next, wanted), wanted);
}

void array_output::resize(uint64 new_size) {
    if (new_size != size())
        fail("cannot resize its buffer");
}

void array_output::open() {
    if (_ours())
        memory_.limit = length_;
}

bool array_output::_apart(std::span<char const> data) const {
    std::less_equal<char const *> const up_to;
    char const * const first = memory_.bytes;
    return _ours() && (up_to(data.data() + data.size(), first) || up_to(first + length_, data.data()));
}

bool array_output::_ours() const { return typeid(*this) == typeid(array_output); }

} // namespace stream
