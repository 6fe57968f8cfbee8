#pragma once

#include "socle/un/structure.h"

namespace io::mac {

/// A rectangle on the screen: `top`, `left`, `bottom`, `right`, in pixels.
class SOCLE_API rect : public un::structure {
public:
    /// The edges, in the order in which they are stored.
    rect(short top = 0, short left = 0, short bottom = 0, short right = 0);
    rect(rect const &) = default;
    rect & operator=(rect const &) = default;
    ~rect() override;

    /// Reads the stored form and returns its length. A member that lacks a byte at the end of the stream is -1,
    /// whatever `strict` says.
    uint32 read(stream::input & input, bool strict) override;
    /// Writes the stored form and returns its length.
    uint32 write(stream::output & output) const override;
    /// The stored length.
    uint32 size() const override;
    /// The stored length.
    static constexpr uint32 fixed_size() { return 8; }

    /// @{
    /// An edge, in pixels.
    short top;
    short left;
    short bottom;
    short right;
    /// @}
};

} // namespace io::mac
