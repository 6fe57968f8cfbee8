/// Integers in a stated byte order, over memory, over a source that lends nothing, and over a buffer.

#include "fuzz/support/feed.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/integers.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/memory_sources.h"

#include <bit>

namespace {

using fuzz::check;

/// As the contract tells it: each byte that is missing sets every bit from its place upward, but for those above three
/// bytes in the host's order.
uint64 word(std::string_view bytes, std::size_t & at, int width, bool big) {
    bool const host_order = big == (std::endian::native == std::endian::big);
    uint32 value = 0;
    for (int i = 0; i < width; ++i) {
        bool const here = at < bytes.size();
        uint32 const byte = here ? static_cast<unsigned char>(bytes[at++]) : 0xFFFFFFFFu;
        value |= byte << 8 * (big ? width - 1 - i : i);
    }
    return width == 2 ? value & 0xFFFF : width == 3 && host_order ? value & 0xFFFFFF : value;
}

uint64 expected(std::string_view bytes, std::size_t & at, int width, bool big) {
    if (width < 8)
        return width == 1 ? word(bytes, at, 1, big) & 0xFF : word(bytes, at, width, big);
    uint64 const first = word(bytes, at, 4, big), second = word(bytes, at, 4, big);
    return big ? first << 32 | second : second << 32 | first;
}

uint64 read(stream::endian_input & in, int width) {
    switch (width) {
    case 1: return in.read8();
    case 2: return in.read16();
    case 3: return in.read24();
    case 4: return in.read32();
    default: return in.read64();
    }
}

void write(stream::endian_output & out, int width, uint64 value) {
    switch (width) {
    case 1: return out.write8(static_cast<unsigned char>(value));
    case 2: return out.write16(static_cast<uint16>(value));
    case 3: return out.write24(static_cast<uint32>(value));
    case 4: return out.write32(static_cast<uint32>(value));
    default: return out.write64(value);
    }
}

/// Eleven integers at once, which has to be what single calls give.
template <class Input, class Output, class Value>
void run_of(Input (&readers)[3], Output & out, Output & to_caller, std::string_view data, std::size_t & at, bool big) {
    Value all[11];
    for (auto & value : all)
        value = static_cast<Value>(expected(data, at, sizeof value, big));
    for (auto & in : readers) {
        Value read[std::size(all)];
        stream::read_integers(in, read);
        check(std::equal(std::begin(all), std::end(all), read));
        check(in.tell() == at);
    }
    stream::write_integers(out, std::span<Value const>(all));
    stream::write_integers(to_caller, std::span<Value const>(all));
}

template <class Input, class Output>
void run(std::string_view widths, std::string_view data, bool big) {
    byte_vector const bytes = fuzz::vector_of(data);
    stream::vector_input memory(bytes);
    support::unlent plain(data), beneath(data);
    stream::buffered_input buffer(beneath, 5);
    Input readers[] = {Input(memory), Input(plain), Input(buffer)};
    byte_vector written;
    stream::vector_output sink(written);
    support::recording_target caller;
    Output out(sink), to_caller(caller);
    std::size_t at = 0, whole = 0;
    for (char const choice : widths) {
        static constexpr int all[] = {1, 2, 3, 4, 8};
        int const width = all[static_cast<unsigned char>(choice) % 5];
        bool const many = static_cast<unsigned char>(choice) >= 128 && width % 2 == 0;
        auto const size = std::size_t(width) * (many ? 11 : 1);
        if (data.size() - at >= size)
            whole = at + size;
        if (many) {
            width == 2   ? run_of<Input, Output, uint16>(readers, out, to_caller, data, at, big)
            : width == 4 ? run_of<Input, Output, uint32>(readers, out, to_caller, data, at, big)
                         : run_of<Input, Output, uint64>(readers, out, to_caller, data, at, big);
            continue;
        }
        uint64 const value = expected(data, at, width, big);
        for (auto & in : readers) {
            check(read(in, width) == value);
            check(in.tell() == at);
        }
        write(out, width, value);
        write(to_caller, width, value);
    }
    // What was read whole is written as it was.
    check(std::equal(bytes.begin(), bytes.begin() + std::ptrdiff_t(whole), written.begin()));
    check(fuzz::vector_of(caller.data) == written);
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    narrow_string const widths = in.text();
    auto const data = in.rest();
    ::run<stream::big_endian_input, stream::big_endian_output>(widths, data, true);
    ::run<stream::little_endian_input, stream::little_endian_output>(widths, data, false);
}
