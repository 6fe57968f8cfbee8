#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace stream {
class input;
class output;
} // namespace stream

namespace un {

/// The root of every binary record of fixed layout: it reads itself from a byte stream, writes itself to one, and knows
/// how many bytes it takes there. A stream's exceptions pass through, and the members that were read keep what they
/// got.
class SOCLE_API structure {
public:
    structure() = default;
    structure(structure const &) = default;
    structure & operator=(structure const &) = default;
    virtual ~structure();

    /// Whether the values make sense, here true.
    virtual bool valid() const;

    /// Takes the stored form from `input`, sets the members and gives the length. `strict` asks for a stream that ends
    /// too early to be an error. Here nothing is read: 0.
    virtual uint32 read(stream::input & input, bool strict);

    /// Writes the stored form and gives the length. Here nothing is written: 0.
    virtual uint32 write(stream::output & output) const;

    /// The length of the stored form in bytes, whatever the values. Here 0.
    virtual uint32 size() const;
};

} // namespace un
