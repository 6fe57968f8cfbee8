#pragma once

#include "basic/types.h"

namespace stream {

/// Whether this machine keeps the high byte of an integer first.
inline bool is_host_big_endian() {
    uint32 const probe = 0x01020304;
    return *reinterpret_cast<unsigned char const *>(&probe) != 4;
}

} // namespace stream
