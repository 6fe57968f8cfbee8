#include "socle/platform/posix/paths/volumes.h"

#include "socle/platform/errors.h"
#include "socle/platform/host.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <vector>

namespace platform {

namespace posix {

namespace {

/// `C:` first, and never empty.
std::vector<volume> & table() {
    static std::vector<volume> volumes = [] {
        std::vector<volume> start;
        start.push_back({'C', {}, {}, nullptr, false});
        return start;
    }();
    return volumes;
}

/// In capitals; 0 for what is no letter.
char letter_of(char16_t unit) {
    if (unit >= u'a' && unit <= u'z')
        return static_cast<char>(unit - u'a' + u'A');
    return unit >= u'A' && unit <= u'Z' ? static_cast<char>(unit) : '\0';
}

uint32 attach(char letter, narrow_string const & folder, narrow_string const & file_system) {
    char const capital = letter_of(static_cast<unsigned char>(letter));
    if (capital == '\0')
        return ERROR_INVALID_PARAMETER;
    if (volume_of_letter(static_cast<unsigned char>(letter)) != nullptr)
        return ERROR_ALREADY_EXISTS;
    char resolved[PATH_MAX];
    struct stat status {};
    if (folder.find('\0') != narrow_string::npos || host::realpath(folder, resolved) == nullptr
        || host::stat(resolved, &status) != 0 || !S_ISDIR(status.st_mode))
        return ERROR_PATH_NOT_FOUND;
    narrow_string const top = resolved;
    volume added{capital, top == "/" ? narrow_string() : top, file_system, nullptr, false};
    if (file_system == "NTFS") {
        if (uint32 const code = make_named_streams(top, added.streams))
            return code;
        narrow_string value;
        added.ntfs_disk = get_attribute(top, "system.ntfs_attrib", true, value);
    }
    table().push_back(std::move(added));
    return 0;
}

} // namespace

volume const * volume_of_letter(char16_t letter) {
    char const capital = letter_of(letter);
    for (volume const & v : table())
        if (v.letter == capital)
            return &v;
    return nullptr;
}

volume const & volume_at(std::string_view host) {
    volume const * found = &table().front();
    for (volume const & v : table()) {
        bool const inside =
            host.starts_with(v.folder) && (host.size() == v.folder.size() || host[v.folder.size()] == '/');
        // Of two at the same folder the one attached last, so that the host's root can be attached as well.
        if (inside && v.folder.size() >= found->folder.size())
            found = &v;
    }
    return *found;
}

bool any_attached() { return table().size() > 1; }

} // namespace posix

uint32 attach_volume(char letter, narrow_string const & folder, narrow_string const & file_system) {
    uint32 const code = posix::attach(letter, folder, file_system);
    posix::report(code);
    return code;
}

uint32 detach_volume(char letter) {
    auto & volumes = posix::table();
    char const capital = posix::letter_of(static_cast<unsigned char>(letter));
    auto const found =
        std::find_if(volumes.begin() + 1, volumes.end(), [&](posix::volume const & v) { return v.letter == capital; });
    if (found == volumes.end()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return ERROR_PATH_NOT_FOUND;
    }
    volumes.erase(found);
    return 0;
}

uint32 last_error() { return GetLastError(); }

} // namespace platform
