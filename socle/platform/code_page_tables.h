#pragma once

#include "socle/basic/types.h"

#include <array>
#include <vector>

namespace platform {

/// One code page of at most two bytes a character, both ways. A code is a byte, or first * 256 + second byte of a pair.
struct code_page {
    /// Stands, while a page is built, where a code means nothing.
    static constexpr char16_t undefined = 0xFFFF;

    std::array<char16_t, 256> single{}; // the unit of a byte that stands alone
    std::array<bool, 256> lead{};       // whether a byte begins a pair
    std::vector<char16_t> pairs;        // the units of the pairs by their code; empty in a page of single bytes
    std::vector<uint16> codes;          // by unit; 0 for none, and for U+0000
    char16_t replacement = u'?';        // for what means nothing

    bool double_bytes() const { return !pairs.empty(); }
};

/// The numbers of the pages that this system can convert, in the order in which they are listed.
std::vector<uint32> installed_pages();

/// The tables of a page, built when it is first asked for and kept; null if there is no such page.
code_page const * find_page(uint32 number);

} // namespace platform
