#include "checksum.h"

#include <socle/algorithm/crc.h>
#include <socle/nio/file.h>

#include <algorithm>
#include <vector>

uint32 checksum(extent const & bytes) {
    uint32 crc = 0;
    if (bytes.size > 0) {
        nio::file file(bytes.path, nio::file::mode_read);
        if (bytes.offset > 0)
            file.seek(bytes.offset);
        std::vector<char> block(static_cast<std::size_t>(std::min<uint64>(bytes.size, 65536)));
        for (uint64 left = bytes.size; left > 0;) {
            auto const got = file.read(block.data(), static_cast<uint32>(std::min<uint64>(left, block.size())));
            if (got == 0)
                break; // somebody has made it shorter
            crc = algorithm::crc::crc_32(reinterpret_cast<unsigned char const *>(block.data()), got, crc);
            left -= got;
        }
    }
    return crc;
}
