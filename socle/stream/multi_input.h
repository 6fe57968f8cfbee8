#pragma once

#include "socle/stream/direct_input.h"

namespace stream {

/// Reads a series of streams as one. A derived class supplies the series: it installs the first member before the first
/// read, and each following one in `next()`. It owns the members.
///
/// The position counts what was read; bytes given back go to the current member, which there has to be, and do not
/// lower it. A member that returns less than it is asked for is finished; empty ones are skipped.
class SOCLE_API multi_input : public direct_input {
public:
    multi_input() = default;
    multi_input(multi_input const &) = default;
    multi_input & operator=(multi_input const &) = default;
    ~multi_input() override;

    /// All ones.
    uint64 size() const override;

protected:
    /// @{
    /// Reads from the current member, and goes on to the next where that ends.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    /// @}
    /// The number of bytes read from all members.
    uint64 _tell() const override;

    /// Called when the current member is finished, to install the following one with `under(stream)`. By default
    /// it installs none, which ends the series.
    virtual void next();

private:
    uint64 total_ = 0;
};

} // namespace stream
