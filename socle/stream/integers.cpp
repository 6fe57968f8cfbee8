#include "socle/stream/integers.h"

#include "socle/basic/byte_blocks_internal.h"
#include "socle/stream/lending_internal.h"

#include <algorithm>
#include <functional>
#include <typeinfo>

namespace stream {

namespace {

uint16 read_one(endian_input & in, uint16) { return in.read16(); }
uint32 read_one(endian_input & in, uint32) { return in.read32(); }
uint64 read_one(endian_input & in, uint64) { return in.read64(); }

void write_one(endian_output & out, uint16 value) { out.write16(value); }
void write_one(endian_output & out, uint32 value) { out.write32(value); }
void write_one(endian_output & out, uint64 value) { out.write64(value); }

/// Whether blocks cannot be moved between these, as one call would change what the next is to find.
template <class A, class B>
bool overlap(std::span<A> a, std::span<B> b) {
    auto const one = std::as_bytes(a), other = std::as_bytes(b);
    std::less<> const before;
    return before(one.data(), other.data() + other.size()) && before(other.data(), one.data() + one.size());
}

template <class Value>
void copy(void * to, void const * from, std::size_t count, bool big) {
    if (basic::is_foreign_order(big))
        basic::copy_swapped<Value>(to, from, count);
    else
        std::memcpy(to, from, count * sizeof(Value));
}

template <class Value>
void read(endian_input & in, std::span<Value> values) {
    bool const big = typeid(in) == typeid(big_endian_input);
    bool const own = big || typeid(in) == typeid(little_endian_input);
    while (!values.empty()) {
        auto const window = own ? lending::bytes(in) : std::span<char const>();
        auto const count = std::min(window.size() / sizeof(Value), values.size());
        if (count == 0 || overlap(values, window)) {
            values[0] = read_one(in, Value());
            values = values.subspan(1);
            continue;
        }
        copy<Value>(values.data(), window.data(), count, big);
        lending::take(in, count * sizeof(Value));
        values = values.subspan(count);
    }
}

template <class Value>
void write(endian_output & out, std::span<Value const> values) {
    bool const big = typeid(out) == typeid(big_endian_output);
    bool const own = big || typeid(out) == typeid(little_endian_output);
    while (!values.empty()) {
        auto const room = own ? lending::room(out.under()) : std::span<char>();
        auto const count = std::min(room.size() / sizeof(Value), values.size());
        if (count == 0 || overlap(values, room)) {
            write_one(out, values[0]);
            values = values.subspan(1);
            continue;
        }
        copy<Value>(room.data(), values.data(), count, big);
        lending::use(out.under(), count * sizeof(Value));
        values = values.subspan(count);
    }
}

} // namespace

void read_integers(endian_input & in, std::span<uint16> values) { read(in, values); }
void read_integers(endian_input & in, std::span<uint32> values) { read(in, values); }
void read_integers(endian_input & in, std::span<uint64> values) { read(in, values); }

void write_integers(endian_output & out, std::span<uint16 const> values) { write(out, values); }
void write_integers(endian_output & out, std::span<uint32 const> values) { write(out, values); }
void write_integers(endian_output & out, std::span<uint64 const> values) { write(out, values); }

} // namespace stream
