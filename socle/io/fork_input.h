#pragma once

#include "socle/io/fork.h"
#include "socle/stream/random/input.h"

namespace io {

/// An open fork as a source. It neither opens the fork nor closes it, but by `close`.
class SOCLE_API fork_input : public stream::random::input {
public:
    /// Reads from an open fork, which has to outlive it.
    explicit fork_input(io::fork & fork);
    fork_input(fork_input const &);
    fork_input & operator=(fork_input const &) = delete;
    ~fork_input() override;

    using stream::random::input::read;

    /// Always true.
    bool seek(uint64 where) override;
    uint64 size() const override;
    void close() override;

protected:
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _tell() const override;

private:
    io::fork & fork_;
};

} // namespace io
