#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace io::unix {

/// Permission bits.
class mode {
public:
    /// Sets the bits.
    mode(uint32 bits = 0640) : value(bits) {}
    /// The bits.
    operator uint32() const { return value; }

    /// The bits.
    uint32 value;
};

} // namespace io::unix
