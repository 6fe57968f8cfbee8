#pragma once

#include "socle/io/optional.h"
#include "socle/io/unix/mode.h"

namespace io::unix {

/// The attributes of a file on Unix.
class attributes {
public:
    /// The permission bits.
    io::unix::mode mode;
    /// For the caller; the library neither sets nor reads it.
    optional<uint32> extra1;
    /// For the caller; the library neither sets nor reads it.
    optional<uint32> extra2;
};

} // namespace io::unix
