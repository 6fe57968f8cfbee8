#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

/// Where the forks of a file lie. On NTFS they are named streams of the file; elsewhere they share one AppleDouble
/// sidecar beside it.
namespace nio {

/// The sidecar: `dir\._leaf` for `dir\leaf`. `\` and `/` both separate.
SOCLE_API wide_string ufs_name(wide_string const & path);
/// `path` followed by ":AFP_Resource".
SOCLE_API wide_string ntfs_rsrc_name(wide_string const & path);
/// `path` followed by ":AFP_AfpInfo".
SOCLE_API wide_string ntfs_info_name(wide_string const & path);
/// Whether `path` ends in ":AFP_Resource".
SOCLE_API bool is_ntfs_rsrc_name(wide_string const & path);
/// Whether `path` ends in ":AFP_AfpInfo".
SOCLE_API bool is_ntfs_info_name(wide_string const & path);

/// Whether the path's volume has the file system NTFS; false if that cannot be found out.
SOCLE_API bool is_ntfs(wide_string const & path);
/// Whether there is a sidecar.
SOCLE_API bool exists_ufs(wide_string const & path);
/// Whether there is a resource fork in a stream.
SOCLE_API bool exists_ntfs(wide_string const & path);
/// Whether there is a resource fork where `rsrc_name(path, true, true)` looks for it.
SOCLE_API bool exists_rsrc(wide_string const & path);

/// Where the resource fork goes: in the stream if `allow_ntfs` and, with `must_exist`, a resource stream is there, or
/// may be, but out of reach, without it, the volume is NTFS; otherwise in the sidecar. Without `allow_ntfs` it does not
/// access the file system.
SOCLE_API wide_string rsrc_name(wide_string const & path, bool must_exist, bool allow_ntfs);
/// Where the Finder information goes, by the same rule; `must_exist` asks for the resource stream, too.
SOCLE_API wide_string info_name(wide_string const & path, bool must_exist, bool allow_ntfs);

} // namespace nio
