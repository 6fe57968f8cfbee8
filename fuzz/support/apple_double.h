#pragma once

#include "fuzz/support/feed.h"

namespace fuzz {

/// Where an AppleDouble file has the entry `id`, as its layout tells it, and how many bytes of its own, which may lie
/// behind the end of the file.
inline bool find_entry(std::string_view file, uint32 id, uint32 & offset, uint32 & room) {
    if (file.size() < 26 || number_at(file, 0, 4, true) != 0x00051607 || number_at(file, 4, 4, true) != 0x00020000)
        return false;
    auto const count = static_cast<std::size_t>(number_at(file, 24, 2, true));
    for (std::size_t i = 0; i < count && file.size() >= 26 + 12 * (i + 1); ++i) {
        if (number_at(file, 26 + 12 * i, 4, true) == id) {
            offset = static_cast<uint32>(number_at(file, 30 + 12 * i, 4, true));
            room = offset < 26 + 12 * count ? 0 : static_cast<uint32>(number_at(file, 34 + 12 * i, 4, true));
            return true;
        }
    }
    return false;
}

} // namespace fuzz
