#pragma once

#include "socle/stream/output.h"

namespace stream {

/// Drops what is written to it and counts the bytes. The count is the position.
class SOCLE_API infinite_output : public output {
public:
    infinite_output() = default;
    infinite_output(infinite_output const &) = default;
    infinite_output & operator=(infinite_output const &) = default;
    ~infinite_output() override;

    /// The number of bytes written so far.
    uint64 count() const noexcept { return count_; }

    using output::write;

    /// Counts the bytes.
    void write(char const * data, uint32 count) override;
    /// The count.
    uint64 tell() const override;
    /// Counts one byte.
    void write(char byte) override;
    /// Reads `source` to its end, without counting.
    void copy_from(input & source) override;
    /// Does nothing.
    void resize(uint64 new_size) override;

private:
    bool _ours() const override;
    bool _apart(std::span<char const> data) const override;

    uint64 count_ = 0;
};

} // namespace stream
