#pragma once

#include "socle/platform/files.h"
#include "socle/platform/posix/files/file_times.h"
#include "socle/platform/posix/paths/resolve.h"

/// What the system's calls do when their paths are resolved.
namespace platform::posix {

/// How a file is to be opened, see CreateFileW.
struct open_request {
    uint32 access;
    uint32 sharing;
    uint32 disposition;
    uint32 flags;
};
system_code open_at(resolved_path const & at, open_request const & request, descriptor_guard & file);

/// The bits, and the times too if `times` is not null.
system_code attributes_at(resolved_path const & at, uint32 & bits, file_times * times);
system_code attributes_at(resolved_path const & at, WIN32_FILE_ATTRIBUTE_DATA & data);
/// Only what GetFileKindW tells.
system_code kind_at(resolved_path const & at, uint32 & kind);
system_code set_attributes_at(resolved_path const & at, uint32 bits);
system_code set_attributes_of(volume const & on, host::at const & file, uint32 bits);

system_code delete_at(resolved_path const & at);
system_code make_folder_at(resolved_path const & at);
system_code remove_folder_at(resolved_path const & at);
system_code move_at(resolved_path const & from, resolved_path const & to);

/// The kind of a file with this mode; 0 for a regular one.
uint32 kind_of(mode_t mode);

/// Whether a file with this mode may not be written or deleted. Links are followed.
bool is_read_only(volume const & on, host::at const & file, mode_t mode);

/// Resolves a path and does `step` with it.
template <typename Step>
system_code with_path(std::u16string_view path, Step step) {
    resolved_path at;
    system_code const code = resolve(path, at);
    return code ? code : step(at);
}

} // namespace platform::posix
