#include "socle/stream/counted_output.h"

#include "socle/stream/lending_internal.h"

#include <typeinfo>

namespace stream {

counted_output::counted_output(output & stream, uint64 start) : filter_output(stream), count_(start) {}

counted_output::~counted_output() = default;

void counted_output::write(char const * data, uint32 count) {
    filter_output::write(data, count);
    count_ += count;
}

void counted_output::write(char byte) {
    filter_output::write(byte);
    ++count_;
}

uint64 counted_output::tell() const { return count_; }

void counted_output::fill(uint64 count, char byte) { output::fill(count, byte); }

bool counted_output::_ours() const { return typeid(*this) == typeid(counted_output); }

std::span<char> counted_output::_room() {
    return _ours() && underlying() ? lending::room(*underlying()) : std::span<char>();
}

void counted_output::_use(uint64 count) {
    lending::use(*underlying(), count);
    count_ += count;
}

} // namespace stream
