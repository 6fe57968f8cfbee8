#pragma once

#include "socle/platform/posix/streams/named_streams.h"

#include <memory>
#include <string_view>

/// The volumes: `C:` for the host's root, and the attached ones. The table only changes before threads start. A folder
/// that is held open keeps its volume, also one that has been detached since.
namespace platform::posix {

struct volume : std::enable_shared_from_this<volume> {
    explicit volume(char capital) : letter(capital) {}

    char letter;
    narrow_string folder; // absolute, free of links, without a separator at its end: empty for the host's root
    narrow_string file_system;
    descriptor_guard top;                   // that folder, held; none for `C:`
    std::unique_ptr<named_streams> streams; // none where files have no named streams
    bool ntfs_disk = false;                 // whether it gives a file's NTFS attributes as extended ones

    held_place place() const { return {top.get(), folder}; }
    /// 3 if the folder has been moved or removed.
    system_code check_place() const;
    /// The path of something in the folder, or of itself, as the calls take it.
    host::at at(narrow_string const & path) const;

    /// See named_streams; the path is the host's, absolute.
    bool hides(std::string_view name, bool at_top) const { return streams && streams->hides(name, at_top); }
    bool hides_path(std::string_view host) const { return streams && streams->hides_path(host.substr(folder.size())); }
};

/// Whether a path is that of the folder, or of something in it, by their text.
bool is_inside(std::string_view host, std::string_view folder);

/// What the volume's file system is called.
wide_string file_system_of(volume const & on);

/// The volume of a letter in either case; null if there is none.
volume const * volume_of_letter(char16_t letter);

/// Adds a volume, and takes one away: see host.h.
system_code attach(char letter, narrow_string const & folder, narrow_string const & file_system);
system_code detach(char letter);

/// The volume whose folder is the longest at or above an absolute host path that is free of links.
volume const & volume_at(std::string_view host);

/// Whether there is any volume but `C:`.
bool any_attached();

/// Whether there is a volume with a folder below this one, told as above.
bool any_below(std::string_view host);

} // namespace platform::posix
