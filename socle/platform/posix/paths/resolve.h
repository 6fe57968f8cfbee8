#pragma once

#include "socle/platform/posix/paths/volumes.h"

#include <string_view>

/// From the library's paths to what the host calls take.
namespace platform {
struct path_text;
} // namespace platform

namespace platform::posix {

struct resolved_path {
    volume const * on = nullptr;
    /// Absolute, without a separator at its end, but "/" for the root. Links in front of the last name are resolved
    /// when volumes are attached.
    narrow_string host;
    /// The name of a named stream, with `host` the file's own; only on a volume that has them.
    wide_string stream;
    /// Whether the path ended in a separator, so that it can only be a folder.
    bool folder = false;
    /// Whether the last name may be created: false for what the native volumes refuse.
    bool safe = true;

    /// What the host takes for the file itself: a separator at the end lets it refuse what is no folder.
    narrow_string host_path() const { return folder && host != "/" ? host + '/' : host; }
};

/// The start of relative paths: adds the names of the working directory.
bool host_working_directory(path_text & text);

/// 0 or a system code.
uint32 resolve(std::u16string_view path, resolved_path & resolved);
uint32 resolve_names(path_text const & path, resolved_path & resolved);

/// The same, but a last name that is a link leads to its target, on the target's volume.
uint32 resolve_target(std::u16string_view path, resolved_path & resolved);

/// The code of a call that failed on `host` with `error`: a missing parent is told from a missing leaf.
uint32 code_at(narrow_string const & host, int error);

} // namespace platform::posix
