#pragma once

#include "basic/export.h"
#include "basic/types.h"

namespace io::unix {

/// Permission bits.
class mode {
public:
    mode(uint32 bits = 0640) : value(bits) {}
    operator uint32() const { return value; }

    uint32 value;
};

} // namespace io::unix
