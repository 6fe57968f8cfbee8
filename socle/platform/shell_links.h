#pragma once

#include "socle/basic/types.h"

namespace platform {

/// Reads the file at `path` as a shell link and returns the path that it leads to, whether or not something is there.
/// False, with `target` as it was, if the file cannot be read, is no link or a damaged one, leads to something that is
/// no file (a printer, a control panel), or to a path of more than 4,096 bytes.
bool ResolveShellLink(wide_string const & path, wide_string & target);

} // namespace platform
