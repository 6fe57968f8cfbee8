#pragma once

#include <socle/basic/types.h>

#include <array>
#include <cstddef>
#include <optional>

/// Reads what stands beside a file and may hold forks of it. Nothing is taken for more than it shows: a file that only
/// has the name of a sidecar is no sidecar.

/// What the Finder keeps of a file or folder, as it is stored.
using finder_bytes = std::array<unsigned char, 32>;

/// How much of it a `.info` sidecar has: type, creator, flags and location.
constexpr std::size_t sidecar_finder_size = 14;

/// Where the bytes of a fork lie: a stretch of a file, or of a stream of one. Without a path there is no fork.
struct extent {
    wide_string path;
    uint64 offset = 0;
    uint64 size = 0;
};

/// All of a file, which is opened for that.
extent whole_file(wide_string const & path);

/// What a sidecar in the AppleDouble form holds.
struct apple_double {
    std::optional<finder_bytes> finder;
    extent information;
    extent resource;
    /// Whether there is more in it, such as a comment or an icon.
    bool more = false;
};

/// Nothing if the file is no AppleDouble file of version 1 or 2, has entries that do not lie within it, or neither
/// Finder information nor a resource fork.
std::optional<apple_double> read_apple_double(wide_string const & path);

/// Gives a sidecar that the library has made an entry for its resource fork, which other programs look for there.
/// Throws a `nio::exception`.
void name_resource_fork(wide_string const & path);

/// Whether the file can be a `.info` sidecar: a MacBinary header alone.
bool is_info_header(wide_string const & path);

/// Makes a stream of Finder information anew. Throws a `nio::exception`.
void write_finder_stream(wide_string const & path, finder_bytes const & finder);

/// What the 60 bytes in a stream of Finder information say; nothing if they are of another kind.
std::optional<finder_bytes> read_finder_stream(wide_string const & path);
