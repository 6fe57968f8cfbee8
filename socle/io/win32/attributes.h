#pragma once

#include "socle/basic/types.h"

namespace io::win32 {

/// The attribute bits of a file, as in Win32.
class attributes {
public:
    /// The bits that DOS knows, without the one for a volume's label: read-only, hidden, system, directory, archive.
    static constexpr uint16 dos_flags = 0x37;

    /// The bits of `flags` that DOS knows.
    uint16 to_dos_flags() const { return static_cast<uint16>(flags & dos_flags); }
    /// Replaces the low 16 bits; those above stay.
    void from_dos_flags(uint16 bits) { flags = (flags & 0xFFFF0000) | (bits & dos_flags); }

    /// All bits, as in Win32.
    uint32 flags = 0;
};

} // namespace io::win32
