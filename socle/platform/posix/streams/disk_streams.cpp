#include "socle/platform/posix/streams/disk_streams.h"

#include "socle/platform/host_names.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/extended_attributes.h"

#include <algorithm>

namespace platform::posix {

bool disk_streams::found_at(held_place const & volume) {
    narrow_string value;
    host::at const top(volume.folder);
    return !get_attribute(top, ntfs_bits_attribute, value) && !get_attribute(top, ntfs_streams_attribute, value);
}

system_code disk_streams::locate(host::at const & file, wide_string const & name, purpose, stream_place & place) const {
    narrow_string leaf;
    if (!to_host_name(name, leaf))
        return ERROR_INVALID_NAME;
    // The driver would take a link itself for the file, and make a file that is missing.
    descriptor_guard opened;
    narrow_string path;
    if (host_error const error = open_place(file, 0, opened, path))
        return code_of(error);
    if (path == volume_ || path == "/") {
        // Behind the mount point's own name, the colon would be part of a name in the folder above it.
        place.folder = std::move(opened);
        place.name = ".:" + leaf;
        return {};
    }
    // In the folder that has the file now, whatever becomes of the path to it.
    std::size_t const separator = path.rfind('/');
    place.folder = open_descriptor(path.substr(0, std::max<std::size_t>(separator, 1)), O_PATH | O_DIRECTORY);
    place.name = path.substr(separator + 1);
    struct stat wanted {};
    struct stat there {};
    if (place.folder.get() < 0 || host::fstat(opened.get(), &wanted) != 0 || host::lstat(place.at(), &there) != 0)
        return last_code();
    if (!is_same_file(wanted, there))
        return ERROR_PATH_NOT_FOUND;
    place.name += ':' + leaf;
    return {};
}

system_code disk_streams::list(host::at const & file, std::vector<wide_string> & names) const {
    names.clear();
    narrow_string text;
    if (host_error const error = get_attribute(file, ntfs_streams_attribute, text))
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
