#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace support {

/// What a system makes of a code page, as a line of the recorded file: the number and three sums, over what each byte
/// means, each pair from 0x8000 on in a page that has pairs, and how each unit is written. `decode(bytes)` gives units,
/// `encode(unit)` bytes, none if the page lacks it.
template <class Decode, class Encode>
std::string page_record(unsigned page, Decode decode, Encode encode) {
    std::uint64_t sums[3] = {};
    auto const add = [&](std::uint64_t & sum, auto const & text) {
        sum = (sum ^ text.size()) * 0x100000001B3;
        for (auto const element : text)
            sum = (sum ^ (sizeof element == 1 ? element & 0xFF : element & 0xFFFF)) * 0x100000001B3;
    };
    for (unsigned code = 0; code < 0x100; ++code)
        add(sums[0], decode(std::string(1, static_cast<char>(code))));
    bool const has_pairs = decode("\xE0\xA1").size() == 1;
    for (unsigned code = 0x8000; has_pairs && code < 0x10000; ++code)
        add(sums[1], decode({static_cast<char>(code / 256), static_cast<char>(code % 256)}));
    for (unsigned unit = 0; unit < 0x10000; ++unit)
        add(sums[2], encode(static_cast<char16_t>(unit)));
    char line[80];
    std::snprintf(line, sizeof line, "%5u", page);
    std::string record = line;
    for (auto const sum : sums) {
        std::snprintf(line, sizeof line, " %016llx", static_cast<unsigned long long>(sum));
        record += line;
    }
    return record;
}

} // namespace support
