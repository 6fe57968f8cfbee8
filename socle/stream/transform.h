#pragma once

#include "socle/stream/input.h"
#include "socle/stream/output.h"

namespace stream {

/// Takes bytes from a source and gives bytes to a sink, both handed in at each call. This one refuses to work.
class SOCLE_API transform {
public:
    transform() = default;
    transform(transform const &) = default;
    transform & operator=(transform const &) = default;
    virtual ~transform();

    /// Hooks for the user of the transform to call before and after use. Nothing here.
    virtual void begin();
    virtual void end();

    /// Processes up to `count` bytes, all ones standing for everything, and gives how many arrived at `target`. Here it
    /// throws "partial stream processing is not implemented".
    virtual uint64 process(input & source, output & target, uint64 count);
    /// Processes everything to the end and gives how many bytes arrived at `target`. Here it throws "full stream
    /// processing is not implemented".
    virtual uint64 process(input & source, output & target);
};

} // namespace stream
