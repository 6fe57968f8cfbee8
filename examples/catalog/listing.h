#pragma once

#include <socle/basic/types.h>

#include <vector>

/// What a name in a folder stands for.
enum class entry_kind { file, folder, link, other };

/// A name in a folder, with the names beside it that hold forks of it; empty where there is none.
struct entry {
    wide_string leaf;
    entry_kind kind = entry_kind::file;
    /// `leaf.rsrc`, `leaf.info` and `._leaf`.
    wide_string rsrc, info, twin;
    /// Whether one of these cannot be read, and so may be a file of its own.
    bool unclear = false;
};

/// Everything that is in a folder.
struct listing {
    std::vector<entry> entries;
    /// The system's code if the walk ended before it was through, or a sidecar could not be looked for, else 0.
    uint32 error = 0;
};

/// Each name of the folder is an entry, or a fork of one: a name of a sidecar beside the file that it would belong to
/// is one if the file at that name looks like it. A folder has no resource fork.
listing list_folder(wide_string const & folder);

/// What the path of the library stands for. Links are not followed.
entry_kind kind_of(wide_string const & path);

/// Throws a `nio::exception` where it cannot be told.
bool is_there(wide_string const & path);
