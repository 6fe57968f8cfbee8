#pragma once

#include <socle/basic/types.h>

/// Mac Roman text in UTF-8, safe for a terminal: control characters, and what has no glyph of its own elsewhere, are
/// written as \x1B, and a backslash as two.
narrow_string readable(narrow_string const & text);
