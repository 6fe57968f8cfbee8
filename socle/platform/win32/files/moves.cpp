#include "socle/platform/win32/paths/system_path.h"

namespace platform {

bool MoveFileW(wide_string const & from, wide_string const & to) {
    win32::system_path const source(from);
    win32::system_path const target(to);
    // Written through: a file that was copied to another volume is on the disk before it goes.
    constexpr DWORD flags = MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;
    return source && target && win32::report(::MoveFileExW(source, target, flags));
}

} // namespace platform
