#pragma once

#include "socle/io/fork.h"
#include "socle/stream/random/output.h"

namespace io {

/// Writes to an open fork as a sink. It never opens the fork, and closes it only in `close`.
class SOCLE_API fork_output : public stream::random::output {
public:
    /// Writes to an open fork, which has to outlive it.
    explicit fork_output(io::fork & fork);
    fork_output(fork_output const &);
    fork_output & operator=(fork_output const &) = delete;
    ~fork_output() override;

    using stream::random::output::write;

    /// Writes to the fork.
    void write(char const * data, uint32 count) override;
    void write(narrow_string const & text) override;
    void write(char byte) override;
    /// Does nothing: no bytes are held back.
    void flush() override;
    /// The position of the fork.
    uint64 tell() const override;
    /// Moves to `where` in the fork, and is always true.
    bool seek(uint64 where) override;
    /// The size of the fork.
    uint64 size() const override;
    /// Makes the fork `size` bytes long.
    void resize(uint64 size) override;
    /// Closes the fork, with a report of failures.
    void close() override;

private:
    io::fork & fork_;
};

} // namespace io
