#include "socle/platform/shell_links.h"

#include "socle/platform/ansi_text.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/paths/resolve.h"
#include "socle/platform/posix/text/shell_link_reader.h"

#include <cstddef>

namespace platform {

namespace {

/// No link is as long: its parts are held in lengths of 16 bits, but for small ones at its end.
constexpr std::size_t longest_link = std::size_t{1024} * 1024;

/// The bytes of a regular file; empty if it cannot be read or is too long. Nothing else is opened in earnest.
narrow_string read_link(narrow_string const & path) {
    posix::descriptor_guard const file = posix::open_descriptor(path, O_RDONLY | O_NONBLOCK);
    struct stat status {};
    if (file.get() < 0 || posix::host::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    narrow_string bytes(longest_link + 1, '\0');
    std::size_t size = 0;
    while (size < bytes.size()) {
        ssize_t const got = posix::host::read(file.get(), bytes.data() + size, bytes.size() - size);
        if (got == 0) {
            bytes.resize(size);
            return bytes;
        }
        if (got < 0)
            break;
        size += static_cast<std::size_t>(got);
    }
    return {};
}

} // namespace

bool ResolveShellLink(wide_string const & path, wide_string & target) {
    posix::resolved_path file;
    return posix::resolve(path, file) == 0 && file.stream.empty()
           && posix::read_shell_link(read_link(file.host_path()), from_ansi, target);
}

} // namespace platform
