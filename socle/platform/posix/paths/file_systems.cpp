#include "socle/platform/host_names.h"
#include "socle/platform/paths.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <algorithm>

namespace platform {

namespace posix {

namespace {

/// What the host's root is by its number, for one that is no mount point of its own.
narrow_string kind_of_root() {
    struct {
        uint32 number;
        char const * name;
    } static constexpr kinds[] = {
        {0xEF53, "ext4"}, {0x9123683E, "btrfs"}, {0x58465342, "xfs"}, {0x01021994, "tmpfs"}, {0x794C7630, "overlay"},
        {0x6969, "nfs"},  {0x65735546, "fuse"},  {0x2FC12FC1, "zfs"}, {0xF2F52010, "f2fs"},  {0x73717368, "squashfs"}};
    struct statfs system {};
    if (host::statfs("/", &system) == 0) {
        for (auto const & [number, name] : kinds)
            if (static_cast<uint32>(system.f_type) == number)
                return name;
    }
    return "unknown";
}

/// The type of what is mounted last at the host's root, as the kernel calls it.
narrow_string root_file_system() {
    descriptor_guard const table = open_descriptor("/proc/self/mountinfo", O_RDONLY);
    narrow_string text;
    char block[4096];
    for (ssize_t got; (got = host::read(table.get(), block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(got));
    narrow_string type = kind_of_root();
    for (std::string_view left = text; !left.empty();) {
        std::string_view const line = left.substr(0, left.find('\n'));
        left.remove_prefix(std::min(line.size() + 1, left.size()));
        // 25 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw
        std::size_t at = 0;
        for (int field = 0; field < 4; ++field)
            at = std::min(line.find(' ', at), line.size() - 1) + 1;
        std::size_t const type_at = line.find(" - ");
        if (line.substr(at).starts_with("/ ") && type_at != std::string_view::npos) {
            std::string_view const rest = line.substr(type_at + 3);
            type = rest.substr(0, rest.find(' '));
        }
    }
    return type;
}

/// It stays what it is while the process runs.
narrow_string const & root_name() {
    static narrow_string const name = root_file_system();
    return name;
}

} // namespace

wide_string file_system_of(volume const & on) {
    return from_host_name(on.letter == 'C' ? root_name() : on.file_system);
}

} // namespace posix

bool GetVolumeInformationW(wide_string const & root, wide_string & file_system) {
    posix::host_text text;
    if (system_code const code = posix::to_host_text(root, text))
        return posix::report(code);
    if (!text.leaf.empty() || text.has_stream)
        return posix::report(ERROR_INVALID_NAME);
    // The host is not asked: what fails there does not change how files keep their streams.
    file_system = posix::file_system_of(posix::volume_at(text.folder));
    return true;
}

} // namespace platform
