#pragma once

#include "socle/basic/types.h"

#include <array>
#include <span>
#include <vector>

namespace platform::posix {

/// One code page of at most two bytes a character, both ways.
struct code_page {
    static constexpr char16_t undefined = 0xFFFF;

    bool ascii = true; // the lower half means itself
    bool double_bytes = false;
    std::array<char16_t, 256> single{}; // the unit of a byte that stands alone
    std::array<bool, 256> lead{};       // whether a byte begins a pair
    std::vector<char16_t> pairs;        // by first * 256 + second byte, `undefined` where there is none
    std::vector<uint16> bytes;          // by unit: the byte, or the pair as above; 0 for none, and for U+0000
};

/// The numbers of the pages that this system can convert, in the order in which they are listed.
std::vector<uint32> installed_pages();

/// The tables of a page, built when it is first asked for and kept; null if there is no such page.
code_page const * find_page(uint32 number);

} // namespace platform::posix
