#pragma once

#include "socle/platform/posix/host/host_calls.h"

namespace platform::posix {

/// Who may read and write a file, so that its streams let in the same.
struct file_rights {
    uid_t owner = 0;
    gid_t group = 0;
    mode_t mode = 0;
    /// Whether an access list says more than the mode. Nobody but the owner is let in then.
    bool listed = false;

    /// The mode of a stream, and of a folder of streams, with the group `of`. Where that is another than the file's,
    /// group and others get what both have, as the host would take a member of the one for one of the other.
    mode_t stream_mode(gid_t of) const;
    mode_t folder_mode(gid_t of) const;
};

/// Gives an open stream, or folder of streams, the owner and the mode that the file asks for, as far as the process
/// may: root and the owner can. `now` is what it has, and is brought up to date.
void let_follow(int file, file_rights const & rights, struct stat & now);

} // namespace platform::posix
