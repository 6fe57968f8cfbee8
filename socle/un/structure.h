#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace stream {
class input;
class output;
} // namespace stream

namespace un {

/// The root of every binary record of fixed layout: it reads itself from a byte stream, writes itself to one, and knows
/// how many bytes it takes there. A stream's exceptions pass through; members that were read by then keep their new
/// values.
class SOCLE_API structure {
public:
    structure() = default;
    structure(structure const &) = default;
    structure & operator=(structure const &) = default;
    virtual ~structure();

    /// Whether the values make sense; true by default.
    virtual bool valid() const;

    /// Reads the stored form from `input`, sets the members and returns the length. With `strict`, a stream that ends
    /// too early is an error. By default it reads nothing and returns 0.
    virtual uint32 read(stream::input & input, bool strict);

    /// Writes the stored form and returns its length. By default it writes nothing and returns 0.
    virtual uint32 write(stream::output & output) const;

    /// The length of the stored form in bytes, whatever the values; 0 by default.
    virtual uint32 size() const;
};

} // namespace un
