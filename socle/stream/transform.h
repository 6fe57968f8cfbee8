#pragma once

#include "socle/stream/input.h"
#include "socle/stream/output.h"

namespace stream {

/// Reads bytes from a source and writes bytes to a sink, which are arguments of each call. A derived class overrides
/// both forms of `process`.
class SOCLE_API transform {
public:
    transform() = default;
    transform(transform const &) = default;
    transform & operator=(transform const &) = default;
    virtual ~transform();

    /// A hook for the user of the transform to call before use. Does nothing by default.
    virtual void begin();
    /// A hook for the user of the transform to call after use. Does nothing by default.
    virtual void end();

    /// Processes up to `count` bytes, or everything if `count` is all ones, and returns the number that arrived at
    /// `target`. By default it throws "partial stream processing is not implemented".
    virtual uint64 process(input & source, output & target, uint64 count);
    /// Processes everything to the end and returns the number of bytes that arrived at `target`. By default it throws
    /// "full stream processing is not implemented".
    virtual uint64 process(input & source, output & target);
};

} // namespace stream
