#include "socle/platform/files.h"
#include "socle/platform/host.h"

namespace platform {

bool is_link(wide_string const & path) {
    uint32 const kind = GetFileKindW(path);
    return kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

} // namespace platform
