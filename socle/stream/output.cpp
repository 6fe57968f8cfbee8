#include "socle/stream/output.h"

#include "socle/nio/blocks.h"
#include "socle/nio/in_blocks_internal.h"
#include "socle/stream/input.h"

namespace stream {

namespace {

uint32 const block_size = 65536;

} // namespace

output::~output() = default;

void output::write(char const * data, uint32 count) {
    if (data == nullptr)
        return;
    for (uint32 i = 0; i < count; ++i)
        write(data[i]);
}

bool output::seek(uint64) { throw exception("cannot seek in a sequential stream", "stream::output"); }

uint64 output::size() const { return tell(); }

void output::write(narrow_string const & text) {
    nio::in_blocks(text.data(), text.size(), [this](char const * data, uint32 count) { write(data, count); });
}

void output::copy_from(input & source) {
    for (int byte = source.read(); byte != -1; byte = source.read())
        write(static_cast<char>(byte));
}

void output::resize(uint64 new_size) {
    uint64 const old_size = size();
    if (new_size < old_size)
        throw exception("resize() does not truncate the stream", "stream::output");
    if (new_size > old_size)
        nio::fill(*this, new_size - old_size, 0, block_size);
}

void output::flush_through() { flush(); }

void output::close() { flush(); }

void output::fill(uint64 count, char byte) { nio::fill(*this, count, byte, block_size); }

void output::mark() { mark_position_ = tell(); }

uint64 output::drift() const { return tell() - mark_position_; }

std::span<char> output::_room() {
    if (memory_.open())
        return memory_.window();
    return {};
}

void output::_use(uint64 count) { memory_.next += count; }

} // namespace stream
