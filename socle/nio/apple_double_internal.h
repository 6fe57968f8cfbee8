#pragma once

#include "socle/nio/input.h"

#include <array>

/// The layout of a sidecar: an AppleDouble file of two entries. All numbers are big-endian.
///
///     0   4  00 05 16 07
///     4   4  00 02 00 00, version 2
///     8  16  filler
///     24  2  the number of entries, then 12 bytes for each: id, offset, length
///     50 32  Finder information
///     82     resource data, up to the end of the file
///
/// The second entry has the id of the Finder information too, and a length of 0; both are looked for by other readers
/// of these files. Resource data is always where this layout has it, Finder information where the first entry of its id
/// says.
namespace nio::apple_double {

constexpr uint32 finder_info_id = 9;
constexpr uint32 finder_info_size = 32;
constexpr uint32 finder_info_offset = 50;
constexpr uint32 resource_offset = finder_info_offset + finder_info_size;

using finder_info = std::array<unsigned char, finder_info_size>;

/// The bytes before the resource data of a sidecar that is made anew.
std::array<char, resource_offset> head(finder_info const & info);

/// Looks for entry `id` in a file that stands at its start. True if `offset` tells where the first one lies; false if
/// there is none, or the file is no AppleDouble file.
bool find_entry(input & file, uint32 id, uint32 & offset);
/// The same, but false as well if the entry cannot be written over with `size` bytes: it is shorter, or lies where the
/// entries themselves do.
bool find_room(input & file, uint32 id, uint32 size, uint32 & offset);

} // namespace nio::apple_double
