#pragma once

#include "socle/basic/types.h"

#include <string_view>
#include <vector>

namespace platform::posix {

/// A path's text taken apart, with `.` and `..` resolved in it.
struct path_text {
    wide_string root; // `C:`, or the start of a share with the server's and its own name
    std::vector<wide_string> names;
    bool folder = false; // whether a separator stood behind the last name

    bool is_share() const { return root.front() == u'\\'; }
    wide_string text() const;
};

/// 0 or a system code. A relative path starts at the working directory.
uint32 read_path(std::u16string_view path, path_text & text);

} // namespace platform::posix
