#pragma once

#include "socle/io/fork.h"
#include "socle/stream/random/input.h"

namespace io {

/// Reads an open fork as a source. It never opens the fork, and closes it only in `close`.
class SOCLE_API fork_input : public stream::random::input {
public:
    /// Reads from an open fork, which has to outlive it.
    explicit fork_input(io::fork & fork);
    fork_input(fork_input const &);
    fork_input & operator=(fork_input const &) = delete;
    ~fork_input() override;

    using stream::random::input::read;

    /// Moves to `where` in the fork, and is always true.
    bool seek(uint64 where) override;
    /// The size of the fork.
    uint64 size() const override;
    /// Closes the fork, with a report of failures.
    void close() override;

protected:
    /// Reads from the fork.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    /// The position of the fork.
    uint64 _tell() const override;

private:
    io::fork & fork_;
};

} // namespace io
