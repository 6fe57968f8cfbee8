#include "socle/platform/paths.h"

#include "socle/platform/errors.h"
#include "socle/platform/host.h"
#include "socle/platform/host_names.h"
#include "socle/platform/path_text.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <algorithm>
#include <cerrno>

namespace platform {

namespace posix {

namespace {

/// Turns the separators, and the names between them with `convert`, of a path into another form.
template <typename Text, typename Convert>
void convert_names(std::basic_string_view<typename Text::value_type> path, Text const & from_separators,
                   Convert convert) {
    while (!path.empty()) {
        std::size_t const end = std::min(path.find_first_of(from_separators), path.size());
        convert(path.substr(0, end), end < path.size());
        path.remove_prefix(std::min(end + 1, path.size()));
    }
}

bool same_letter(char16_t unit, char letter) { return (unit & ~char16_t{0x20}) == static_cast<unsigned char>(letter); }

/// Gives a path on another volume than its text says that volume's letter.
void set_volume(path_text & path) {
    resolved_path found;
    resolve_names(path, found);
    if (found.on == nullptr || found.host.empty() || same_letter(path.root.front(), found.on->letter))
        return;
    path_text moved{{static_cast<char16_t>(found.on->letter), u':'}, {}, path.folder};
    convert_names<narrow_string>(std::string_view(found.host).substr(found.on->folder.size()), "/",
                                 [&](std::string_view name, bool) {
                                     if (!name.empty())
                                         moved.names.push_back(from_host_name(name));
                                 });
    std::size_t const colon = path.names.empty() ? wide_string::npos : path.names.back().find(u':');
    if (colon != wide_string::npos && !moved.names.empty())
        moved.names.back() += path.names.back().substr(colon);
    moved.folder = moved.folder && !moved.names.empty();
    path = std::move(moved);
}

/// What the host's root is by its number, for one that is no mount point of its own.
narrow_string kind_of_root() {
    struct {
        long number;
        char const * name;
    } static constexpr kinds[] = {
        {0xEF53, "ext4"}, {0x9123683E, "btrfs"}, {0x58465342, "xfs"}, {0x01021994, "tmpfs"}, {0x794C7630, "overlay"},
        {0x6969, "nfs"},  {0x65735546, "fuse"},  {0x2FC12FC1, "zfs"}, {0xF2F52010, "f2fs"},  {0x73717368, "squashfs"}};
    struct statfs system {};
    if (host::statfs("/", &system) == 0) {
        for (auto const & [number, name] : kinds)
            if (static_cast<uint32>(system.f_type) == static_cast<uint32>(number))
                return name;
    }
    return "unknown";
}

/// The type of what is mounted last at the host's root, as the kernel calls it.
narrow_string root_file_system() {
    descriptor_guard const table(host::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    narrow_string text;
    char block[4096];
    for (ssize_t got; (got = host::read(table.get(), block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(got));
    narrow_string type = kind_of_root();
    convert_names<narrow_string>(text, "\n", [&](std::string_view line, bool) {
        // 25 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw
        std::size_t at = 0;
        for (int field = 0; field < 4; ++field)
            at = std::min(line.find(' ', at), line.size() - 1) + 1;
        std::size_t const type_at = line.find(" - ");
        if (line.substr(at).starts_with("/ ") && type_at != std::string_view::npos) {
            std::string_view const rest = line.substr(type_at + 3);
            type = rest.substr(0, rest.find(' '));
        }
    });
    return type;
}

/// It stays what it is while the process runs.
narrow_string const & root_name() {
    static narrow_string const name = root_file_system();
    return name;
}

} // namespace

} // namespace posix

bool GetFullPathNameW(wide_string const & path, wide_string & full) {
    path_text text;
    if (system_code const code = read_path(path, posix::host_working_directory, text))
        return posix::report(code.value());
    if (!text.is_share() && posix::any_attached())
        posix::set_volume(text);
    full = text.text();
    return true;
}

bool GetVolumeInformationW(wide_string const & root, wide_string & file_system) {
    posix::resolved_path resolved;
    if (uint32 const code = posix::resolve(root, resolved))
        return posix::report(code);
    bool const host_root = resolved.on->letter == 'C';
    file_system = from_host_name(host_root ? posix::root_name() : resolved.on->file_system);
    return true;
}

wide_string from_host(narrow_string const & path) {
    wide_string text = path.starts_with('/') ? u"C:" : u"";
    posix::convert_names<narrow_string>(path, "/", [&](std::string_view name, bool more) {
        text += from_host_name(name);
        text += more ? u"\\" : u"";
    });
    return text;
}

narrow_string to_host(wide_string const & path) {
    wide_string left = path;
    narrow_string host;
    if (left.size() >= 2 && left[1] == u':') {
        posix::volume const * const on = posix::volume_of_letter(left[0]);
        if (on == nullptr) {
            SetLastError(ERROR_PATH_NOT_FOUND);
            return {};
        }
        host = on->folder;
        left.erase(0, 2);
        if (!left.starts_with(u'\\') && !left.starts_with(u'/'))
            left.insert(0, 1, u'\\');
    } else if (left.starts_with(u"\\\\") || left.starts_with(u"//")) {
        SetLastError(ERROR_BAD_NETPATH);
        return {};
    }
    bool mapped = true;
    posix::convert_names<wide_string>(left, u"\\/", [&](std::u16string_view name, bool more) {
        narrow_string text;
        mapped = mapped && name.find(u':') == std::u16string_view::npos && to_host_name(name, text);
        host += text;
        host += more ? "/" : "";
    });
    if (!mapped) {
        SetLastError(ERROR_INVALID_NAME);
        return {};
    }
    return host;
}

} // namespace platform
