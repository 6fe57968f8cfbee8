#pragma once

#include "socle/io/mac/os_type.h"
#include "socle/stream/endian_input.h"
#include "socle/stream/lending_internal.h"

#include <type_traits>

namespace io::mac {

/// The fields of a record that lies in memory.
struct fields_in_memory {
    char const * at;

    void skip(uint32 count) { at += count; }
    void number(auto & value) {
        using Value = std::remove_reference_t<decltype(value)>;
        value = static_cast<Value>(basic::load<std::make_unsigned_t<Value>>(at, true));
        at += sizeof value;
    }
    void code(os_type & type) { number(type.value); }
};

/// The same from a stream, which may end within them.
struct fields_in_stream {
    stream::big_endian_input in;

    void skip(uint32 count) { in.skip(count); }
    void number(short & value) { value = static_cast<short>(in.read16()); }
    void number(uint16 & value) { value = in.read16(); }
    void number(uint32 & value) { value = in.read32(); }
    void code(os_type & type) { type.read(in, true); }
};

/// Reads a record of `size` bytes by calling `layout` with its fields, and returns `size`: at once if all of it lies in
/// the memory of the stream, else by single reads of the stream.
template <uint32 size>
uint32 read_record(stream::input & input, auto layout) {
    auto const window = stream::lending::bytes(input);
    if (window.size() >= size) {
        layout(fields_in_memory{window.data()});
        stream::lending::take(input, size);
    } else {
        layout(fields_in_stream{stream::big_endian_input(input)});
    }
    return size;
}

} // namespace io::mac
