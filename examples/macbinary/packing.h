#pragma once

#include "archive.h"

/// Makes a forked file in the folder of an archive of which only the header has been read, and gives its path as the
/// host has it. Throws an `io::exception` or a `nio::exception`; nothing is left in the folder then.
narrow_string unpack(archive & in, narrow_string const & folder);

/// Makes the MacBinary file `target` of a forked file. Throws an `io::exception`, also if there is a `target` already;
/// nothing is left of it then.
void pack(narrow_string const & path, narrow_string const & target);
