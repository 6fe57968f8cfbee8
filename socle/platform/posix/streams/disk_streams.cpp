#include "socle/platform/posix/streams/disk_streams.h"

#include "socle/platform/host_names.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/extended_attributes.h"

#include <algorithm>

namespace platform::posix {

bool disk_streams::found_at(held_place const & volume) {
    narrow_string value;
    host::at const top(volume.folder);
    return !get_attribute(top, ntfs_bits_attribute, true, value)
           && !get_attribute(top, ntfs_streams_attribute, true, value);
}

system_code disk_streams::locate(host::at const & file, wide_string const & name, purpose, stream_place & place) const {
    narrow_string & host = place.name;
    narrow_string leaf;
    if (!to_host_name(name, leaf))
        return ERROR_INVALID_NAME;
    // The driver would take a link itself for the file, and make a file that is missing.
    if (host_error const error = real_path(file, host))
        return code_of(error);
    // Behind the mount point's own name, the colon would be part of a name in the folder above it.
    host += host == volume_ || host == "/" ? "/.:" : ":";
    host += leaf;
    return {};
}

system_code disk_streams::list(host::at const & file, std::vector<wide_string> & names) const {
    names.clear();
    narrow_string text;
    if (host_error const error = get_attribute(file, ntfs_streams_attribute, true, text))
        return code_of(error);
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const end = std::min(text.find('\0', at), text.size());
        if (end > at)
            names.push_back(from_host_name(text.substr(at, end - at)));
        at = end + 1;
    }
    std::sort(names.begin(), names.end());
    return {};
}

bool disk_streams::hides(std::string_view name, bool) const { return name.find(':') != std::string_view::npos; }

} // namespace platform::posix
