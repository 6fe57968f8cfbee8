#pragma once

#include "socle/io/optional.h"
#include "socle/io/unix/mode.h"

namespace io::unix {

/// What Unix keeps about a file.
class attributes {
public:
    /// The permission bits.
    io::unix::mode mode;
    /// For the caller; the library neither sets nor reads them.
    optional<uint32> extra1;
    optional<uint32> extra2;
};

} // namespace io::unix
