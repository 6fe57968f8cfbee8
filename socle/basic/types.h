#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The value types that every family shares. They are global names: all families use them unqualified.

using uint16 = std::uint16_t;
using uint32 = std::uint32_t;
using uint64 = std::uint64_t;
using int64 = std::int64_t;

/// 8-bit text with a length of its own, so zero bytes can stand in it.
using narrow_string = std::string;
/// 16-bit text, the same; one unit is a `char16_t`.
using wide_string = std::u16string;
using byte_vector = std::vector<unsigned char>;

/// Stands for the lack of a size in `size()`, and for everything up to the end in a count.
constexpr uint64 all_ones = ~uint64{0};
