#include "socle/platform/posix/streams/disk_streams.h"

#include "socle/platform/errors.h"
#include "socle/platform/host_names.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/host_calls.h"

#include <algorithm>
#include <cerrno>
#include <climits>

namespace platform::posix {

namespace {
/// The driver's list of a file's streams: their names, with a zero byte between two.
constexpr char const * list_attribute = "ntfs.streams.list";
} // namespace

bool disk_streams::found_at(narrow_string const & volume) {
    narrow_string value;
    return get_attribute(volume, "system.ntfs_attrib", true, value)
           && get_attribute(volume, list_attribute, true, value);
}

uint32 disk_streams::locate(narrow_string const & file, wide_string const & name, bool, narrow_string & host) const {
    narrow_string leaf;
    if (!to_host_name(name, leaf))
        return ERROR_INVALID_NAME;
    // The driver would take a link itself for the file, and make a file that is missing.
    char resolved[PATH_MAX];
    if (host::realpath(file, resolved) == nullptr)
        return code_of(errno);
    host = resolved;
    // Behind the mount point's own name, the colon would be part of a name in the folder above it.
    host += host == volume_ ? "/.:" : ":";
    host += leaf;
    return 0;
}

uint32 disk_streams::list(narrow_string const & file, std::vector<wide_string> & names) const {
    names.clear();
    narrow_string text;
    if (!get_attribute(file, list_attribute, true, text))
        return code_of(errno);
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const end = std::min(text.find('\0', at), text.size());
        if (end > at)
            names.push_back(from_host_name(text.substr(at, end - at)));
        at = end + 1;
    }
    std::sort(names.begin(), names.end());
    return 0;
}

bool disk_streams::hidden(narrow_string const & host) const {
    return host.starts_with(volume_) && host.find(':', volume_.size()) != narrow_string::npos;
}

narrow_string disk_streams::belongings(narrow_string const &) const { return {}; }

} // namespace platform::posix
