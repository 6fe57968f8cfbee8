#pragma once

#include "listing.h"
#include "side_files.h"

#include <socle/io/mac/info.h>
#include <socle/nio/time.h>

#include <vector>

/// Everything that there is to know about a file or folder but its bytes.
struct file_record {
    wide_string path;
    host::status status;
    extent data, resource, information;
    /// All zero if the Finder knows nothing of it.
    finder_bytes finder{};
    nio::time created, modified;
    /// Attribute bits, as in `nio::attributes`.
    uint32 bits = 0;
    /// Whether it may have a fork, or streams, beside the data.
    bool more = false;
    /// Whether one of these cannot be read.
    bool unclear = false;
    /// What is there besides, and is not told here.
    std::vector<narrow_string> doubts;

    bool folder() const { return status.kind == host::kind::folder; }
    bool read_only() const { return (bits & 1) != 0; }
    bool has_finder() const { return finder != finder_bytes(); }
    /// The part of `finder` that all forms keep.
    io::mac::file_info file_info() const;
    uint64 bytes() const { return data.size + resource.size; }
};

/// Looks at an entry of `folder`. A fork can be a stream of the file, a sidecar, or part of an AppleDouble file; the
/// first of these that has one counts. What cannot be read is among the doubts.
file_record look_at(wide_string const & folder, entry const & found);

/// Whether both have the same bytes.
bool same_bytes(extent const & a, extent const & b);
