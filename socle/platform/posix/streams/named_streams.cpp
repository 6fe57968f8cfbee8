#include "socle/platform/posix/streams/named_streams.h"

#include "socle/platform/posix/files/copies.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/streams/disk_streams.h"
#include "socle/platform/posix/streams/stored_streams.h"
#include "socle/platform/posix/streams/stream_folders.h"

#include <optional>
#include <sys/file.h>

namespace platform::posix {

namespace {

/// Why files at `volume` can have no user attributes.
host_error keeps_no_attributes(held_place const & volume) {
    narrow_string value;
    host_error const error = get_attribute(host::at(volume.folder), note_attribute, value);
    return error == ENODATA ? host_error() : error;
}

/// Takes the streams along when a file is removed: made before its name is removed, told afterwards.
class stream_removal {
public:
    stream_removal(named_streams const & streams, host::at const & file) {
        // Where they cannot be found the file goes all the same, and they with a sweep.
        if (!streams.find_belongings(file, belongings_) && !belongings_.name.empty())
            file_ = open_descriptor(file, O_PATH | O_NOFOLLOW);
    }

    /// Removes the streams if that was the last name of the file.
    void name_removed() {
        struct stat status {};
        if (file_.get() < 0 || host::fstat(file_.get(), &status) != 0
            || (status.st_nlink > 0 && !S_ISDIR(status.st_mode)))
            return;
        static_cast<void>(remove_belongings(belongings_));
    }

private:
    named_streams::belongings belongings_;
    descriptor_guard file_;
};

/// Copies one stream; the source stays locked while `in` lives.
system_code copy_stream(named_streams const & from, host::at const & file, named_streams const & to,
                        host::at const & copy, wide_string const & name, descriptor_guard & in) {
    if (system_code const code = open_stream(from, file, name, O_RDONLY, in))
        return code;
    if (is_locked_out(in.get(), LOCK_SH))
        return ERROR_SHARING_VIOLATION;
    descriptor_guard out;
    system_code const code = open_stream(to, copy, name, O_WRONLY, out);
    return code ? code : code_of(copy_bytes(in.get(), out.get()));
}

} // namespace

system_code stream_place::admit(int stream) const {
    if (!rights)
        return {};
    struct stat status {};
    if (host::fstat(stream, &status) != 0)
        return last_code();
    if (!is_stream(status, owner, *rights, borrowed))
        return ERROR_ACCESS_DENIED;
    try {
        if (!borrowed)
            let_follow(stream, *rights, status);
        return {};
    } catch (host_error const & error) {
        return code_of(error);
    }
}

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

system_code make_named_streams(held_place const & volume, std::unique_ptr<named_streams> & streams) {
    if (disk_streams::found_at(volume)) {
        streams = std::make_unique<disk_streams>(volume);
        return {};
    }
    if (host_error const error = keeps_no_attributes(volume))
        return code_of(error);
    try {
        stream_store::open(volume);
    } catch (host_error const & error) {
        return code_of(error);
    }
    streams = std::make_unique<stored_streams>(volume);
    return {};
}

system_code open_stream(named_streams const & streams, host::at const & file, wide_string const & name, int access,
                        descriptor_guard & stream) {
    using purpose = named_streams::purpose;
    bool const writes = access != O_RDONLY;
    stream_place place;
    if (system_code const code = streams.locate(file, name, writes ? purpose::create : purpose::look, place))
        return code;
    stream = open_descriptor(place.at(), access | place.flags());
    // Made as a new one: the driver of an NTFS disk may remember one of the same name that has gone.
    if (stream.get() < 0 && errno == ENOENT && writes)
        stream = open_descriptor(place.at(), access | place.flags() | O_CREAT | O_EXCL, new_stream_mode);
    if (stream.get() < 0)
        return errno == EEXIST ? ERROR_SHARING_VIOLATION : last_code();
    if (system_code const code = place.admit(stream.get()))
        return code;
    return writes && is_locked_out(stream.get(), LOCK_EX) ? ERROR_SHARING_VIOLATION : system_code();
}

host_error remove_belongings(named_streams::belongings const & gone) {
    return remove_streams(gone.around.get(), gone.name, gone.folder.get());
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
                         host::at const & copy, std::vector<descriptor_guard> & held) {
    std::vector<wide_string> names;
    if (system_code const code = from.list(file, names); code || names.empty())
        return code;
    descriptor_guard all;
    if (system_code const code = from.hold(file, all))
        return code;
    bool const one_by_one = all.get() < 0;
    held.push_back(std::move(all));
    for (wide_string const & name : names) {
        descriptor_guard in;
        if (system_code const code = copy_stream(from, file, to, copy, name, in))
            return code;
        if (one_by_one)
            held.push_back(std::move(in));
    }
    return {};
}

} // namespace platform::posix
