#pragma once

#include "listing.h"
#include "side_files.h"

#include <socle/io/mac/info.h>
#include <socle/nio/time.h>

#include <vector>

/// Everything that there is to know about a file or folder but its bytes.
struct file_record {
    wide_string path;
    bool folder = false;
    extent data, resource, information;
    /// All zero if the Finder knows nothing of it.
    finder_bytes finder{};
    nio::time created, modified;
    /// Attribute bits, as in `nio::attributes`.
    uint32 bits = 0;
    /// Whether it may have a fork that cannot be read.
    bool unclear = false;
    /// What is there besides, and is not told here.
    std::vector<narrow_string> doubts;

    bool read_only() const { return (bits & 1) != 0; }
    bool has_finder() const { return finder != finder_bytes(); }
    /// The part of `finder` that all forms keep.
    io::mac::file_info file_info() const;
};

/// Looks at an entry of `folder`. A fork can be a stream of the file, a sidecar, or part of an AppleDouble file; the
/// first of these that has one counts. Throws an `io::exception` or a `nio::exception` for what cannot be read.
file_record look_at(wide_string const & folder, entry const & found);

/// Whether both have the same bytes.
bool same_bytes(extent const & a, extent const & b);
