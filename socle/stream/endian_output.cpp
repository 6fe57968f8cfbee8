#include "socle/stream/endian_output.h"

#include "socle/stream/lending_internal.h"

#include <cstring>
#include <typeinfo>

namespace stream {

endian_output::endian_output(output & stream)
    : filter_output(stream), host_big_endian_(!basic::is_foreign_order(true)) {}

endian_output::~endian_output() = default;

void endian_output::write8(unsigned char value) { beneath().write(static_cast<char>(value)); }

/// Writes the low `width` bytes of `value`: into room that the sink has in memory, in one block if the order is the
/// host's, and byte by byte otherwise.
void endian_output::write_on(uint64 value, uint32 width, bool big) {
    output & out = beneath();
    char bytes[sizeof value];
    for (uint32 i = 0; i < width; ++i)
        bytes[i] = static_cast<char>(value >> 8 * (big ? width - 1 - i : i));
    if (auto const room = lending::room(out); room.size() >= width) {
        std::memcpy(room.data(), bytes, width);
        lending::use(out, width);
    } else if (big == host_big_endian()) {
        out.write(bytes, width);
    } else {
        for (uint32 i = 0; i < width; ++i)
            out.write(bytes[i]);
    }
}

big_endian_output::big_endian_output(output & stream) : endian_output(stream) {}

big_endian_output::~big_endian_output() = default;

void big_endian_output::write24(uint32 value) { write_on(value, 3, true); }

bool big_endian_output::_ours() const { return typeid(*this) == typeid(big_endian_output); }

little_endian_output::little_endian_output(output & stream) : endian_output(stream) {}

little_endian_output::~little_endian_output() = default;

void little_endian_output::write24(uint32 value) { write_on(value, 3, false); }

bool little_endian_output::_ours() const { return typeid(*this) == typeid(little_endian_output); }

} // namespace stream
