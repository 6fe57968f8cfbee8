#include "checksum.h"

#include <socle/nio/file.h>

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr std::array<uint32, 256> table = [] {
    std::array<uint32, 256> result{};
    for (uint32 byte = 0; byte < 256; ++byte) {
        uint32 crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        result[byte] = crc;
    }
    return result;
}();

} // namespace

uint32 checksum(extent const & bytes) {
    uint32 crc = 0xFFFFFFFF;
    if (bytes.size > 0) {
        nio::file file(bytes.path, 1);
        file.seek(bytes.offset);
        std::vector<char> block(65536);
        for (uint64 left = bytes.size; left > 0;) {
            auto const got = file.read(block.data(), static_cast<uint32>(std::min<uint64>(left, block.size())));
            if (got == 0)
                break; // somebody has made it shorter
            for (uint32 i = 0; i < got; ++i)
                crc = crc >> 8 ^ table[(crc ^ static_cast<unsigned char>(block[i])) & 0xFF];
            left -= got;
        }
    }
    return ~crc;
}
