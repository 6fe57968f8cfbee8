#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The value types that every family shares. They are global names: all families use them unqualified.

/// An unsigned integer of 16 bits.
using uint16 = std::uint16_t;
/// An unsigned integer of 32 bits.
using uint32 = std::uint32_t;
/// An unsigned integer of 64 bits.
using uint64 = std::uint64_t;
/// A signed integer of 64 bits.
using int64 = std::int64_t;

/// 8-bit text, in a code page or UTF-8. It may contain zero bytes.
using narrow_string = std::string;
/// 16-bit text, one `char16_t` for each unit. It may contain zero units.
using wide_string = std::u16string;
/// Bytes in memory.
using byte_vector = std::vector<unsigned char>;

/// As a size it means that none is known; as a count it means everything up to the end.
constexpr uint64 all_ones = ~uint64{0};
