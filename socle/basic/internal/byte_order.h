#pragma once

#include "socle/basic/types.h"

#include <bit>
#include <cstring>

/// Integers as they lie in memory, at any address, the high byte first if `big`.
namespace basic {

/// The same bytes, the last one first.
constexpr uint16 byte_swap(uint16 value) { return static_cast<uint16>(value << 8 | value >> 8); }
constexpr uint32 byte_swap(uint32 value) {
    value = (value & 0x00FF00FF) << 8 | (value >> 8 & 0x00FF00FF);
    return value << 16 | value >> 16;
}
constexpr uint64 byte_swap(uint64 value) {
    return uint64(byte_swap(static_cast<uint32>(value))) << 32 | byte_swap(static_cast<uint32>(value >> 32));
}

/// Whether integers of this machine have to be turned around.
constexpr bool is_foreign_order(bool big) { return big != (std::endian::native == std::endian::big); }

/// The integer at `bytes`.
template <class Value>
Value load(char const * bytes, bool big) {
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return is_foreign_order(big) ? byte_swap(value) : value;
}

/// Puts the integer at `bytes`.
template <class Value>
void store(char * bytes, Value value, bool big) {
    if (is_foreign_order(big))
        value = byte_swap(value);
    std::memcpy(bytes, &value, sizeof value);
}

} // namespace basic
