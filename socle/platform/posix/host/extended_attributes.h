#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"

namespace platform::posix {

/// What the driver of a mounted NTFS disk gives: a file's attribute bits, four bytes, and its creation time, eight, as
/// the host keeps integers; and the list of its streams, their names with a zero byte between two.
constexpr char const * ntfs_bits_attribute = "system.ntfs_attrib";
constexpr char const * ntfs_created_attribute = "system.ntfs_crtime";
constexpr char const * ntfs_streams_attribute = "ntfs.streams.list";

/// The value of an extended attribute; empty on failure, which is ENODATA if there is none.
host_error get_attribute(host::at const & file, char const * name, bool follow_link, narrow_string & value);

/// Whether the file has any that it lists, as far as the host tells; links are followed.
bool has_attributes(host::at const & file);

/// Sets one; links are followed. A missing write bit of the owner is lifted for the moment that takes.
host_error set_attribute(host::at const & file, char const * name, narrow_string const & value);

} // namespace platform::posix
