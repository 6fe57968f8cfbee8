#pragma once

#include <socle/basic/types.h>

/// Makes a forked file in the folder of a MacBinary file, and gives its path as the host has it. Paths are the host's.
/// Throws an `io::exception`; nothing is left in the folder then.
narrow_string unpack(narrow_string const & path, narrow_string const & folder);

/// Makes the MacBinary file `target` of a forked file. Throws an `io::exception`, also if there is a `target` already;
/// nothing is left of it then.
void pack(narrow_string const & path, narrow_string const & target);
