#include "checksum.h"

#include <socle/nio/file.h>

#include <algorithm>
#include <array>
#include <vector>

namespace {

/// Row `n` says what a byte leaves when `n` more have gone through.
constexpr auto table = [] {
    std::array<std::array<uint32, 256>, 8> result{};
    for (uint32 byte = 0; byte < 256; ++byte) {
        uint32 crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        result[0][byte] = crc;
    }
    for (std::size_t n = 1; n < 8; ++n)
        for (uint32 byte = 0; byte < 256; ++byte)
            result[n][byte] = result[n - 1][byte] >> 8 ^ result[0][result[n - 1][byte] & 0xFF];
    return result;
}();

uint32 update(uint32 crc, unsigned char const * bytes, uint32 count) {
    auto const number = [](unsigned char const * at) {
        return at[0] | uint32(at[1]) << 8 | uint32(at[2]) << 16 | uint32(at[3]) << 24;
    };
    for (; count >= 8; bytes += 8, count -= 8) {
        uint32 const low = number(bytes) ^ crc, high = number(bytes + 4);
        crc = table[7][low & 0xFF] ^ table[6][low >> 8 & 0xFF] ^ table[5][low >> 16 & 0xFF] ^ table[4][low >> 24]
              ^ table[3][high & 0xFF] ^ table[2][high >> 8 & 0xFF] ^ table[1][high >> 16 & 0xFF] ^ table[0][high >> 24];
    }
    for (; count > 0; ++bytes, --count)
        crc = crc >> 8 ^ table[0][(crc ^ *bytes) & 0xFF];
    return crc;
}

} // namespace

uint32 checksum(extent const & bytes) {
    uint32 crc = 0xFFFFFFFF;
    if (bytes.size > 0) {
        nio::file file(bytes.path, nio::file::mode_read);
        if (bytes.offset > 0)
            file.seek(bytes.offset);
        std::vector<char> block(static_cast<std::size_t>(std::min<uint64>(bytes.size, 262144)));
        for (uint64 left = bytes.size; left > 0;) {
            auto const got = file.read(block.data(), static_cast<uint32>(std::min<uint64>(left, block.size())));
            if (got == 0)
                break; // somebody has made it shorter
            crc = update(crc, reinterpret_cast<unsigned char const *>(block.data()), got);
            left -= got;
        }
    }
    return ~crc;
}
