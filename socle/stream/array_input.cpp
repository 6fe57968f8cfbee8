#include "socle/stream/array_input.h"

#include "socle/stream/copy_in_order_internal.h"
#include "socle/stream/output.h"

#include <algorithm>
#include <typeinfo>

namespace stream {

namespace {

[[noreturn]] void fail(char const * message) { throw exception(message, "stream::array_input"); }

uint32 checked(std::size_t length) {
    if (length > UINT32_MAX)
        fail("cannot read more than the maximum array size");
    return static_cast<uint32>(length);
}

} // namespace

array_input::array_input(char const * data, uint32 length, uint32 start) : length_(length) { memory_ = {data, start}; }

array_input::array_input(un::array<char> const & array, uint32 start)
    : array_input(array.data(), array.size(), start) {}

array_input::array_input(std::string_view block) : array_input(block.data(), checked(block.size())) {}

array_input::array_input(std::span<unsigned char const> block)
    : array_input(reinterpret_cast<char const *>(block.data()), checked(block.size())) {}

array_input::~array_input() = default;

uint64 array_input::size() const { return length_; }

uint32 array_input::_read(char * buffer, uint32 count) {
    auto const got = static_cast<uint32>(std::min<uint64>(count, left()));
    copy_in_order(buffer, memory_.bytes + memory_.next, got);
    memory_.next += got;
    if (_ours())
        memory_.limit = length_;
    return got;
}

int array_input::_read() {
    if (left() == 0)
        return -1;
    if (_ours())
        memory_.limit = length_;
    return static_cast<unsigned char>(memory_.bytes[memory_.next++]);
}

uint64 array_input::_skip(uint64 count) {
    if (count > UINT32_MAX)
        fail("cannot skip more than the maximum array size");
    uint64 const skipped = std::min(count, left());
    memory_.next += skipped;
    return skipped;
}

uint64 array_input::_tell() const { return memory_.next; }

uint64 array_input::_copy(output & target, uint64 count) {
    if (count == all_ones)
        count = size();
    if (count > UINT32_MAX)
        fail("cannot copy more than the maximum array size");
    if (count > left())
        fail("cannot copy more data than the array contains");
    if (count > 0)
        target.write(memory_.bytes + memory_.next, static_cast<uint32>(count));
    target.flush();
    return count;
}

bool array_input::_ours() const { return typeid(*this) == typeid(array_input); }

} // namespace stream
