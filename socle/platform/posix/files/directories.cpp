#include "socle/platform/directories.h"

#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/host/report.h"

namespace platform {

system_code posix::make_folder_at(resolved_path const & at) {
    if (!at.stream.empty())
        return ERROR_INVALID_NAME;
    struct stat status {};
    if (!at.safe && host::lstat(at.at(), &status) != 0)
        return ERROR_INVALID_NAME;
    return last_code_at_if(host::mkdir(at.at(), new_folder_mode) != 0, at);
}

bool CreateDirectoryW(wide_string const & path) { return posix::report(posix::with_path(path, posix::make_folder_at)); }

} // namespace platform
