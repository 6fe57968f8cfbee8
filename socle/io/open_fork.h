#pragma once

#include "socle/io/fork.h"

namespace io {

/// Opens a fork, and closes it at the end of the block, however that is left. Closing there reports nothing, so whoever
/// writes ends with `commit()`.
class SOCLE_API open_fork {
public:
    /// Opens `fork`, which has to outlive it, by `fork::open`, `open_rw` or `create`, and throws what they throw.
    explicit open_fork(io::fork & fork, fork::open_mode mode = fork::open_read);
    open_fork(open_fork const &) = delete;
    open_fork & operator=(open_fork const &) = delete;
    ~open_fork();

    /// @{
    /// The fork, which is open until `commit()`.
    io::fork & operator*() const noexcept { return fork_; }
    io::fork * operator->() const noexcept { return &fork_; }
    /// @}

    /// Flushes the fork to the disk, then closes it, and throws what either reports. A stream that holds bytes back for
    /// the fork has to be flushed before.
    void commit();

private:
    io::fork & fork_;
};

} // namespace io
