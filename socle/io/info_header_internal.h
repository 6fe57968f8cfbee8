#pragma once

#include "socle/io/mac/info.h"

#include <array>

namespace io {

/// What a sidecar of Finder data says: a MacBinary header without a name and without forks.
struct info_header {
    static constexpr uint32 size = 128;
    /// Where the last field ends that is read back.
    static constexpr uint32 least_size = 102;

    mac::file_info finder;
    /// Seconds since 1904.
    uint32 created = 0;
    uint32 modified = 0;

    /// Takes the fields from `count` bytes, of which there are `least_size` at least. The mark, the versions and the
    /// CRC are not looked at.
    void read(char const * bytes, uint32 count);
    std::array<char, size> write() const;
};

} // namespace io
