#pragma once

#include "socle/io/fork.h"
#include "socle/stream/random/output.h"

namespace io {

/// An open fork as a sink. It neither opens the fork nor closes it, but by `close`; `flush` does nothing.
class SOCLE_API fork_output : public stream::random::output {
public:
    /// Writes to an open fork, which has to outlive it.
    explicit fork_output(io::fork & fork);
    fork_output(fork_output const &);
    fork_output & operator=(fork_output const &) = delete;
    ~fork_output() override;

    using stream::random::output::write;

    void write(char const * data, uint32 count) override;
    void write(narrow_string const & text) override;
    void write(char byte) override;
    void flush() override;
    uint64 tell() const override;
    /// Always true.
    bool seek(uint64 where) override;
    uint64 size() const override;
    void resize(uint64 size) override;
    void close() override;

private:
    io::fork & fork_;
};

} // namespace io
