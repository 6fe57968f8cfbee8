// Records what the native system's code pages hold, for code_pages.txt. Reads the old record, for the numbers of the
// pages, and writes the new one. From the top of the tree, with Wine 8 for the native system:
//
//   x86_64-w64-mingw32-g++ -std=c++20 -static -I. -o record.exe tests/data/record_code_pages.cpp
//   wine record.exe <tests/data/code_pages.txt | tr -d '\r' >new && mv new tests/data/code_pages.txt

#include "tests/support/page_record.h"

#include <windows.h>

#include <iostream>

int main() {
    for (std::string line; std::getline(std::cin, line);) {
        unsigned page = 0;
        if (std::sscanf(line.c_str(), "%u", &page) != 1) {
            std::cout << line << '\n';
            continue;
        }
        auto const decode = [&](std::string const & bytes) {
            wchar_t units[4];
            auto const count = MultiByteToWideChar(page, 0, bytes.data(), static_cast<int>(bytes.size()), units, 4);
            return std::u16string(units, units + count);
        };
        auto const encode = [&](wchar_t unit) {
            char bytes[4];
            BOOL used = FALSE;
            auto const count = WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, &unit, 1, bytes, 4, nullptr, &used);
            return std::string(bytes, used ? 0 : static_cast<std::size_t>(count));
        };
        std::cout << support::page_record(page, decode, encode) << '\n';
    }
}
