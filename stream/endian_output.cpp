#include "stream/endian_output.h"

#include "stream/host_order_internal.h"
#include "stream/lending_internal.h"

#include <cstring>
#include <typeinfo>

namespace stream {

namespace {

/// Writes the low `width` bytes of `value`: into room that the sink has in memory, in one block if the order is the
/// host's, and byte by byte otherwise.
template <int width>
void put(output & out, uint64 value, bool big, bool host_big) {
    char bytes[width];
    for (int i = 0; i < width; ++i)
        bytes[i] = static_cast<char>(value >> 8 * (big ? width - 1 - i : i));
    if (auto const room = lending::room(out); room.size() >= width) {
        std::memcpy(room.data(), bytes, width);
        lending::use(out, width);
    } else if (big == host_big) {
        out.write(bytes, width);
    } else {
        for (char const byte : bytes)
            out.write(byte);
    }
}

} // namespace

endian_output::endian_output(output & stream) : filter_output(stream), host_big_endian_(is_host_big_endian()) {}

endian_output::~endian_output() = default;

void endian_output::write8(unsigned char value) { beneath().write(static_cast<char>(value)); }

big_endian_output::big_endian_output(output & stream) : endian_output(stream) {}

big_endian_output::~big_endian_output() = default;

void big_endian_output::write16(uint16 value) { put<2>(beneath(), value, true, host_big_endian()); }

void big_endian_output::write24(uint32 value) { put<3>(beneath(), value, true, host_big_endian()); }

void big_endian_output::write32(uint32 value) { put<4>(beneath(), value, true, host_big_endian()); }

void big_endian_output::write64(uint64 value) { put<8>(beneath(), value, true, host_big_endian()); }

bool big_endian_output::_ours() const { return typeid(*this) == typeid(big_endian_output); }

little_endian_output::little_endian_output(output & stream) : endian_output(stream) {}

little_endian_output::~little_endian_output() = default;

void little_endian_output::write16(uint16 value) { put<2>(beneath(), value, false, host_big_endian()); }

void little_endian_output::write24(uint32 value) { put<3>(beneath(), value, false, host_big_endian()); }

void little_endian_output::write32(uint32 value) { put<4>(beneath(), value, false, host_big_endian()); }

void little_endian_output::write64(uint64 value) { put<8>(beneath(), value, false, host_big_endian()); }

bool little_endian_output::_ours() const { return typeid(*this) == typeid(little_endian_output); }

} // namespace stream
