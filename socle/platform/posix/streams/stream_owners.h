#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/system_code.h"

/// Which file owns which folder of streams in our own store.
///
/// A file says so in an extended attribute: a random id, which names the folder, and the file's identity (inode and
/// birth time) when that was written. A copy of the attribute on another file, or an inode that is used again, does not
/// match the identity, and counts as no attribute.
///
/// When a volume is copied or restored as a whole, no identity matches any more. The store's folder carries its own, so
/// that this shows; `settle_owners` then finds each folder's owner again.
namespace platform::posix {

/// On an owner: its claim. On the store's folder: its identity. On an id's folder: the owner's path in the volume.
constexpr char const * owner_attribute = "user.socle.streams";

/// The random bytes in an id.
constexpr std::size_t stream_id_bytes = 16;

/// The id of the streams of `file`, empty if it owns none. `store` is the store's folder.
system_code stream_owner(narrow_string const & store, host::at const & file, bool follow_link, narrow_string & id);

/// The same, but gives `file` an id if it has none, and the store a folder if there is none. The id's folder is made
/// as well; it admits whom the file admits.
system_code make_stream_owner(narrow_string const & store, host::at const & file, narrow_string & id);

/// Finds the owners again if the store has been copied since it was last settled; else returns at once. A folder goes
/// to the one file that claims it; if there are several, to the one with the path that the owner had when it was made.
/// Files and folders that cannot be read or written keep the store unsettled, and are tried again the next time.
system_code settle_owners(narrow_string const & volume, narrow_string const & store);

} // namespace platform::posix
