#include "socle/platform/posix/streams/named_streams.h"

#include "socle/platform/posix/files/copies.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/folder_reader.h"
#include "socle/platform/posix/streams/disk_streams.h"
#include "socle/platform/posix/streams/stored_streams.h"
#include "socle/platform/posix/streams/stream_owners.h"

#include <new>
#include <optional>

namespace platform::posix {

namespace {

/// Why files at `volume` can have no user attributes.
host_error keeps_no_attributes(narrow_string const & volume) {
    narrow_string value;
    host_error const error = get_attribute(volume, owner_attribute, true, value);
    return error == ENODATA ? host_error() : error;
}

/// Removes what lies in an open folder. Links are removed, not followed.
void remove_entries(int folder) {
    folder_reader entries(folder);
    while (dirent64 const * const entry = entries.next()) {
        host::at const name(folder, entry->d_name);
        if (host::unlink(name) == 0)
            continue;
        descriptor_guard const inner = open_descriptor(name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (inner.get() >= 0) {
            remove_entries(inner.get());
            host::rmdir(name);
        }
    }
}

/// Takes the streams along when a file is removed: made before its name is removed, told afterwards.
class stream_removal {
public:
    stream_removal(named_streams const & streams, host::at const & file) : belongings_(streams.belongings(file)) {
        if (!belongings_.empty())
            file_ = open_descriptor(file, O_PATH | O_NOFOLLOW);
    }

    /// Removes the streams if that was the last name of the file.
    void name_removed() {
        struct stat status {};
        if (file_.get() < 0 || host::fstat(file_.get(), &status) != 0
            || (status.st_nlink > 0 && !S_ISDIR(status.st_mode)))
            return;
        descriptor_guard const folder = open_descriptor(belongings_, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        try {
            if (folder.get() >= 0) {
                remove_entries(folder.get());
                host::rmdir(belongings_);
            }
        } catch (std::bad_alloc const &) {
            // The file has gone; what stays of its streams belongs to nobody.
        }
    }

private:
    narrow_string belongings_;
    descriptor_guard file_;
};

} // namespace

bool named_streams::hides_path(std::string_view below) const {
    for (bool at_top = true; !below.empty(); at_top = false) {
        below.remove_prefix(1);
        std::string_view const name = below.substr(0, below.find('/'));
        if (hides(name, at_top))
            return true;
        below.remove_prefix(name.size());
    }
    return false;
}

system_code make_named_streams(narrow_string const & folder, std::unique_ptr<named_streams> & streams) {
    narrow_string volume;
    if (host_error const error = real_path(folder, volume))
        return code_of(error);
    if (disk_streams::found_at(volume)) {
        streams = std::make_unique<disk_streams>(volume);
        return {};
    }
    if (host_error const error = keeps_no_attributes(volume))
        return code_of(error);
    volume = volume == "/" ? narrow_string() : volume;
    auto stored = std::make_unique<stored_streams>(volume);
    system_code const code = settle_owners(volume, stored->store());
    if (!code)
        streams = std::move(stored);
    return code;
}

host_error remove_with_streams(named_streams const * streams, host::at const & file, int (*remove)(host::at const &)) {
    std::optional<stream_removal> removal;
    if (streams != nullptr)
        removal.emplace(*streams, file);
    if (remove(file) != 0)
        return host_error::last();
    if (removal)
        removal->name_removed();
    return {};
}

system_code copy_streams(named_streams const & from, host::at const & file, named_streams const & to,
                         host::at const & copy) {
    std::vector<wide_string> names;
    if (system_code const code = from.list(file, names))
        return code;
    for (wide_string const & name : names) {
        narrow_string source;
        narrow_string target;
        if (system_code const code = from.locate(file, name, false, source))
            return code;
        if (system_code const code = to.locate(copy, name, true, target))
            return code;
        descriptor_guard const in = open_descriptor(source, O_RDONLY);
        if (in.get() < 0)
            return last_code();
        descriptor_guard const out = open_descriptor(target, O_WRONLY | O_CREAT | O_TRUNC);
        if (out.get() < 0)
            return last_code();
        if (system_code const code = copy_bytes(in.get(), out.get()))
            return code;
    }
    return {};
}

} // namespace platform::posix
