#pragma once

#include <socle/basic/types.h>

/// A path of the host, which may hold any bytes, as text that is safe to show: what is no text is written as \x1B, and
/// a backslash as two.
narrow_string readable_path(narrow_string const & path);
