#include "socle/platform/shell_links.h"

#include "socle/platform/ansi_text.h"
#include "socle/platform/files.h"
#include "socle/platform/shell_link_reader.h"

#include <cstddef>

namespace platform {

namespace {

/// No link is as long: its parts are held in lengths of 16 bits, but for small ones at its end.
constexpr std::size_t longest_link = std::size_t{1024} * 1024;

/// The bytes of a regular file; empty if it cannot be read or is too long. What has no size is not read.
narrow_string read_link(wide_string const & path) {
    int const file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
    handle_guard const closes(file);
    uint64 size = 0;
    if (file == INVALID_HANDLE_VALUE || !GetFileSize(file, size) || size > longest_link)
        return {};
    narrow_string bytes(static_cast<std::size_t>(size), '\0');
    uint32 done = 0;
    if (!ReadFile(file, bytes.data(), static_cast<uint32>(size), done))
        return {};
    bytes.resize(done);
    return bytes;
}

} // namespace

bool ResolveShellLink(wide_string const & path, wide_string & target) {
    return read_shell_link(read_link(path), from_ansi, target);
}

} // namespace platform
