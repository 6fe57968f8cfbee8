#pragma once

#include "socle/basic/types.h"
#include "socle/platform/system_code.h"

#include <string_view>
#include <vector>

namespace platform {

/// A path's text taken apart, with `.` and `..` resolved in it.
struct path_text {
    wide_string root; // `C:`, or the start of a share with the server's and its own name
    std::vector<wide_string> names;
    bool folder = false; // whether a separator stood behind the last name, or behind the share if there is none

    bool is_share() const { return root.front() == u'\\'; }
    wide_string text() const;
};

/// Gives the root and the names of the working directory; false if it is gone.
using working_directory = bool(path_text & text);

/// A relative path starts at `start`, which is only asked for one.
system_code read_path(std::u16string_view path, working_directory * start, path_text & text);

} // namespace platform
