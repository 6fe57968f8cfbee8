#pragma once

#include "socle/basic/types.h"

#include <string_view>

namespace fuzz {

inline uint32 big_number(std::string_view bytes, std::size_t at, std::size_t size) {
    uint32 value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

/// Where an AppleDouble file has the entry `id`, as its layout tells it, and how many bytes of its own, which may lie
/// behind the end of the file.
inline bool find_entry(std::string_view file, uint32 id, uint32 & offset, uint32 & room) {
    if (file.size() < 26 || big_number(file, 0, 4) != 0x00051607 || big_number(file, 4, 4) != 0x00020000)
        return false;
    std::size_t const count = big_number(file, 24, 2);
    for (std::size_t i = 0; i < count && file.size() >= 26 + 12 * (i + 1); ++i) {
        if (big_number(file, 26 + 12 * i, 4) == id) {
            offset = big_number(file, 30 + 12 * i, 4);
            room = offset < 26 + 12 * count ? 0 : big_number(file, 34 + 12 * i, 4);
            return true;
        }
    }
    return false;
}

} // namespace fuzz
