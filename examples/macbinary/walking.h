#pragma once

#include <socle/basic/types.h>

/// Shows what is in a folder of the host, file by file with its side forks and what the Finder knows of it. False if it
/// is no folder.
bool show_tree(narrow_string const & path);
