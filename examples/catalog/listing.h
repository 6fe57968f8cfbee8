#pragma once

#include "host_folder.h"

#include <socle/basic/types.h>

/// A name in a folder, with what is known of it, and of the names beside it that hold forks of it.
struct entry {
    wide_string leaf;
    host::status status;
    /// Whether `leaf.rsrc`, `leaf.info` and `._leaf` are forks of it.
    bool rsrc = false, info = false, twin = false;
    /// Whether one of these cannot be read, and so may be a file of its own.
    bool unclear = false;
    /// Whether there may be more to know than the host's status and those forks tell.
    bool more = false;

    bool file() const { return status.kind == host::kind::file; }
    bool folder() const { return status.kind == host::kind::folder; }
    bool has_forks() const { return rsrc || info || twin || more; }
};

/// The names of the forks of a file of this name.
wide_string rsrc_leaf(wide_string const & leaf);
wide_string info_leaf(wide_string const & leaf);
/// Whether it could be one of these.
bool is_fork_name(wide_string const & leaf);

/// Everything in a folder, sorted by name: each name is an entry, or a fork of one. A name of a sidecar beside the file
/// that it would belong to is one if the file at that name looks like it. A folder has no resource fork. `path` is the
/// library's. Throws a `std::system_error`.
std::vector<entry> list_folder(host::folder const & folder, wide_string const & path);

/// Throws a `nio::exception` where it cannot be told.
bool is_there(wide_string const & path);
