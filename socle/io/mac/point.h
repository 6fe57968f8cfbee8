#pragma once

#include "socle/un/structure.h"

namespace io::mac {

/// A place on the screen: `v`, `h`.
class SOCLE_API point : public un::structure {
public:
    /// Sets `v` to `down` and `h` to `right`.
    point(short down = 0, short right = 0);
    point(point const &) = default;
    point & operator=(point const &) = default;
    ~point() override;

    /// Reads the stored form and returns its length. A member that lacks a byte at the end of the stream is -1,
    /// whatever `strict` says.
    uint32 read(stream::input & input, bool strict) override;
    /// Writes the stored form and returns its length.
    uint32 write(stream::output & output) const override;
    /// The stored length.
    uint32 size() const override;
    /// The stored length.
    static constexpr uint32 fixed_size() { return 4; }

    /// Down from the top, in pixels.
    short v;
    /// Right from the left side, in pixels.
    short h;
};

} // namespace io::mac
