#include "socle/platform/code_pages.h"
#include "socle/platform/errors.h"
#include "tests/support/page_record.h"
#include "tests/support/system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <vector>

namespace {

using namespace platform;
using namespace std::string_literals;

wide_string decoded(uint32 page, std::string const & bytes) {
    auto const count = static_cast<uint32>(bytes.size());
    wide_string units(MultiByteToWideChar(page, bytes.data(), count, nullptr, 0), u'*');
    EXPECT_EQ(MultiByteToWideChar(page, bytes.data(), count, units.data(), static_cast<uint32>(units.size())),
              units.size());
    return units;
}

std::string encoded(uint32 page, wide_string const & units, bool * used = nullptr, char const * other = nullptr) {
    auto const count = static_cast<uint32>(units.size());
    std::string bytes(WideCharToMultiByte(page, units.data(), count, nullptr, 0, other, used), '*');
    EXPECT_EQ(
        WideCharToMultiByte(page, units.data(), count, bytes.data(), static_cast<uint32>(bytes.size()), other, used),
        bytes.size());
    return bytes;
}

TEST(code_pages, hold_what_the_native_ones_hold) {
    std::vector<std::string> found;
    EXPECT_TRUE(EnumSystemCodePagesA([&](char const * number) {
        auto const page = static_cast<uint32>(std::stoul(number));
        auto const decode = [page](std::string const & bytes) {
            char16_t units[4];
            auto const count = static_cast<uint32>(bytes.size());
            return wide_string(units, MultiByteToWideChar(page, bytes.data(), count, units, 4));
        };
        auto const encode = [page](char16_t unit) {
            char bytes[4];
            bool used = false;
            auto const count = WideCharToMultiByte(page, &unit, 1, bytes, 4, nullptr, &used);
            return std::string(bytes, used ? 0 : count);
        };
        found.push_back(support::page_record(page, decode, encode));
        return true;
    }));
    // What was recorded is in the order of the list. 858, which the recorded system lacks, is 850 but for the euro.
    std::ifstream record(TEST_DATA "/code_pages.txt");
    std::vector<std::string> expected;
    for (std::string line; std::getline(record, line);)
        if (line[0] != '#')
            expected.push_back(line);
    auto const euros = std::erase_if(found, [](auto const & line) { return line.starts_with("  858"); });
    EXPECT_EQ(found, expected);
    for (int byte = 0; byte < 0x100 && euros > 0; ++byte) {
        std::string const text(1, static_cast<char>(byte));
        EXPECT_EQ(decoded(858, text), byte == 0xD5 ? u"\x20AC" : decoded(850, text)) << byte;
    }
}

TEST(code_pages, replace_a_malformed_pair_once) {
    struct {
        uint32 page;
        std::string bytes;
        wide_string units;
    } const table[] = {
        {932, "a\xE0 b", u"a\x30FB\x62"},  {932, "\xE0", u"\x30FB"},
        {932, "\xE0\x81\x40", u"\x7109@"}, {932, "\x81\xFFz", u"\x30FBz"},
        {932, "\x81\0z"s, u"\x30FB\0z"s},  {936, "a\xFE\x7Fz", u"a?z"},
        {949, "\xA1\xFF", u"?"},           {950, "\xA1\xA0\xA4\x40", u"?\x4E00"},
    };
    for (auto const & c : table)
        EXPECT_EQ(decoded(c.page, c.bytes), c.units) << c.page;
}

TEST(code_pages, say_what_the_page_lacks) {
    bool used = false;
    EXPECT_EQ(encoded(1252, u"a\x20AC\x0416z", &used, "_"), "a\x80_z");
    EXPECT_TRUE(used);
    EXPECT_EQ(encoded(932, u"\xD83D\xDE00", &used), "??");
    EXPECT_EQ(encoded(1252, wide_string(u"\0a\0", 3), &used), std::string("\0a\0", 3));
    EXPECT_FALSE(used);
    EXPECT_EQ(encoded(1252, u"\x0081\x009D"), "\x81\x9D");
}

TEST(code_pages, utf8_has_real_pairs) {
    struct {
        std::string bytes;
        wide_string units;
        std::string back;
    } const table[] = {
        {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"a\xE9\x20AC\xD83D\xDE00", ""},
        {"\xC0\x80", u"\xFFFD\xFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xE2\x82", u"\xFFFD", "\xEF\xBF\xBD"},
        {"\xE2\x82z", u"\xFFFDz", "\xEF\xBF\xBDz"},
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xF4\x90\x80\x80\xFF", u"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD",
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (auto const & c : table) {
        EXPECT_EQ(decoded(CP_UTF8, c.bytes), c.units);
        EXPECT_EQ(encoded(CP_UTF8, c.units), c.back.empty() ? c.bytes : c.back);
    }
    EXPECT_EQ(encoded(CP_UTF8, u"\xDC00\xD800"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(code_pages, refuse_what_they_do_not_know) {
    for (uint32 const page : {1200u, 99999u}) {
        char16_t unit = u'a';
        char byte = 'a';
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(page, "a", 1, &unit, 1), 0u);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        SetLastError(0);
        EXPECT_EQ(WideCharToMultiByte(page, u"a", 1, &byte, 1, nullptr, nullptr), 0u);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(MultiByteToWideChar(1252, "", 0, nullptr, 0), 0u);
    bool used = false;
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, u"a", 1, nullptr, 0, nullptr, &used), 0u);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(code_pages, follow_the_language) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    struct row {
        char const * locale;
        uint32 ansi, oem;

        bool holds() const { return GetACP() == ansi && GetOEMCP() == oem; }
    };
    row const table[] = {
        {"C", 1252, 437},     {"en_US.UTF-8", 1252, 437}, {"ja_JP.UTF-8", 932, 932}, {"ru", 1251, 866},
        {"zh_CN", 936, 936},  {"zh_TW.BIG5", 950, 950},   {"ko_KR@x", 949, 949},     {"pl_PL", 1250, 852},
        {"hu", 1250, 852},    {"el_GR", 1253, 737},       {"tr_TR", 1254, 857},      {"he_IL", 1255, 862},
        {"POSIX", 1252, 437}, {"rupee", 1252, 437},       {"", 1252, 437},           {"de_DE", 1252, 850},
    };
    if (!support::starts_in_locales()) {
        if (std::none_of(std::begin(table), std::end(table), std::mem_fn(&row::holds)))
            GTEST_SKIP() << "the system has another language: pages " << GetACP() << " and " << GetOEMCP();
        return;
    }
    for (auto const & c : table) {
        // The language is looked up once in a process.
        EXPECT_EXIT(
            {
                support::set_variable("LC_ALL", c.locale);
                support::set_variable("LC_CTYPE", nullptr);
                support::set_variable("LANG", nullptr);
                std::exit(c.holds() ? 0 : 1);
            },
            testing::ExitedWithCode(0), "")
            << c.locale;
    }
}

} // namespace
