#include "socle/platform/host_names.h"
#include "socle/platform/paths.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <algorithm>

namespace platform {

namespace posix {

namespace {

/// A folder of a volume without the links in it, as far as it exists; "" for the host's root.
narrow_string real_folder(volume const & on, narrow_string const & folder) {
    std::shared_ptr<found_folder const> found;
    for (std::size_t end = folder.size(); end > on.folder.size(); end = folder.rfind('/', end - 1))
        if (!find_folder(on, folder.substr(0, end), found))
            return found->real + folder.substr(end);
    return folder;
}

/// Gives a path on another volume than its text says that volume's letter.
void set_volume(path_text & path) {
    host_text text;
    if (to_host_text(path, text))
        return;
    narrow_string host = real_folder(*text.on, text.folder);
    if (!text.leaf.empty())
        host.append("/").append(text.leaf);
    volume const & on = volume_at(host);
    if (on.letter == text.on->letter)
        return;
    path_text moved{{static_cast<char16_t>(on.letter), u':'}, {}, path.folder};
    for (std::string_view left = std::string_view(host).substr(on.folder.size()); !left.empty();) {
        left.remove_prefix(1);
        std::string_view const name = left.substr(0, left.find('/'));
        moved.names.push_back(from_host_name(name));
        left.remove_prefix(name.size());
    }
    if (text.has_stream && !moved.names.empty())
        (moved.names.back() += u':') += text.stream;
    moved.folder = moved.folder && !moved.names.empty();
    path = std::move(moved);
}

} // namespace

} // namespace posix

bool GetFullPathNameW(wide_string const & path, wide_string & full) {
    path_text text;
    if (system_code const code = read_path(path, posix::host_working_directory, text))
        return posix::report(code);
    if (!text.is_share() && posix::any_attached())
        posix::set_volume(text);
    full = text.text();
    return true;
}

} // namespace platform
