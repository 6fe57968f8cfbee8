#include "socle/platform/code_pages.h"
#include "socle/platform/errors.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iconv.h>
#include <map>
#include <vector>

namespace {

using namespace platform;

/// What the host makes of `bytes`, empty if it refuses them.
std::string host(char const * to, char const * from, std::string bytes) {
    iconv_t const handle = iconv_open(to, from);
    std::string result(64, '\0');
    char * in = bytes.data();
    char * out = result.data();
    std::size_t in_left = bytes.size(), out_left = result.size();
    bool const good = iconv(handle, &in, &in_left, &out, &out_left) == 0;
    iconv(handle, nullptr, nullptr, &out, &out_left);
    iconv_close(handle);
    return good ? result.substr(0, result.size() - out_left) : std::string();
}

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

/// Every assigned code means what the host says, and comes back as the host writes it; where the host knows several
/// forms of a unit, or none, the way back at least means the same.
void agrees_with_host(uint32 page, std::string const & name, std::string const & code) {
    auto const units = host("UTF-16LE", name.c_str(), code);
    if (units.size() != 2)
        return;
    auto const unit =
        static_cast<char16_t>(static_cast<unsigned char>(units[0]) + 256 * static_cast<unsigned char>(units[1]));
    ASSERT_EQ(decoded(page, code), wide_string(1, unit)) << page;
    auto const back = host(name.c_str(), "UTF-16LE", units);
    bool used = true;
    auto const ours = encoded(page, wide_string(1, unit), &used);
    EXPECT_FALSE(used);
    if (host("UTF-16LE", name.c_str(), back) == units && back.size() <= 2)
        ASSERT_EQ(ours, back) << page;
    ASSERT_EQ(decoded(page, ours), wide_string(1, unit)) << page;
}

TEST(code_pages, agree_with_the_host) {
    std::map<uint32, std::string> const named = {{10000, "MACINTOSH"},
                                                 {10007, "MAC-CYRILLIC"},
                                                 {10017, "MAC-UK"},
                                                 {10029, "MAC-CENTRALEUROPE"},
                                                 {10079, "MAC-IS"}};
    std::vector<uint32> pages;
    EXPECT_TRUE(EnumSystemCodePagesA([&](char const * number) {
        pages.push_back(static_cast<uint32>(std::stoul(number)));
        return true;
    }));
    ASSERT_GT(pages.size(), 30u);
    EXPECT_EQ(pages.front(), 1250u);
    for (uint32 const page : pages) {
        EXPECT_NE(page, CP_UTF8);
        auto const found = named.find(page);
        auto const name = found != named.end() ? found->second
                          : page > 28590       ? "ISO-8859-" + std::to_string(page - 28590)
                                               : "CP" + std::to_string(page);
        bool const east = page == 932 || page == 936 || page == 949 || page == 950;
        for (int first = 0; first < 256; ++first) {
            std::string const byte(1, static_cast<char>(first));
            agrees_with_host(page, name, byte);
            if (!east) {
                auto const unit = decoded(page, byte);
                ASSERT_EQ(unit.size(), 1u);
                if (host("UTF-16LE", name.c_str(), byte).empty())
                    EXPECT_EQ(unit[0], first) << page;
                EXPECT_EQ(decoded(page, encoded(page, unit)), unit) << page;
            }
        }
    }
}

TEST(code_pages, double_bytes_agree_with_the_host) {
    for (uint32 const page : {932u, 936u, 949u, 950u}) {
        for (int first = 0x81; first < 0xFF; ++first) {
            for (int second = 0x40; second < 0xFF; ++second)
                agrees_with_host(page, "CP" + std::to_string(page),
                                 {static_cast<char>(first), static_cast<char>(second)});
        }
        // A lead byte with nothing behind it that makes a pair.
        EXPECT_EQ(decoded(page, "\xE0"), u"\xFFFD");
        EXPECT_EQ(decoded(page, "a\xE0 b"), u"a\xFFFD b");
    }
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
    bool used = false;
    EXPECT_EQ(encoded(CP_UTF8, u"\xDC00\xD800", &used), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_TRUE(used);
    encoded(CP_UTF8, u"\xD83D\xDE00", &used);
    EXPECT_FALSE(used);
}

TEST(code_pages, stay_within_the_capacity) {
    std::string const text(40, 'x');
    wide_string const accented = wide_string(20, u'x') + u"\xE9\x20AC" + wide_string(20, u'x');
    for (uint32 capacity = 1; capacity < 50; ++capacity) {
        wide_string units(50, u'*');
        std::string bytes(100, '*');
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(1252, text.data(), 40, units.data(), capacity), capacity < 40 ? 0u : 40u);
        EXPECT_EQ(GetLastError(), capacity < 40 ? ERROR_INSUFFICIENT_BUFFER : 0u);
        EXPECT_EQ(units.substr(capacity), wide_string(50 - capacity, u'*'));
        EXPECT_EQ(WideCharToMultiByte(CP_UTF8, accented.data(), 42, bytes.data(), capacity, nullptr, nullptr),
                  capacity < 45 ? 0u : 45u);
        EXPECT_EQ(bytes.substr(capacity), std::string(100 - capacity, '*'));
    }
}

TEST(code_pages, refuse_what_they_do_not_know) {
    for (uint32 const page : {0u, 1u, 37u, 1200u, 99999u}) {
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
}

TEST(code_pages, follow_the_language) {
    struct {
        char const * locale;
        uint32 ansi, oem;
    } const table[] = {
        {"C", 1252, 437},     {"en_US.UTF-8", 1252, 437}, {"ja_JP.UTF-8", 932, 932}, {"ru", 1251, 866},
        {"zh_CN", 936, 936},  {"zh_TW.BIG5", 950, 950},   {"ko_KR@x", 949, 949},     {"pl_PL", 1250, 852},
        {"hu", 1250, 852},    {"el_GR", 1253, 737},       {"tr_TR", 1254, 857},      {"he_IL", 1255, 862},
        {"POSIX", 1252, 437}, {"rupee", 1252, 437},       {"", 1252, 437},           {"de_DE", 1252, 850},
    };
    for (auto const & c : table) {
        // The language is looked up once in a process.
        EXPECT_EXIT(
            {
                setenv("LC_ALL", c.locale, 1);
                unsetenv("LC_CTYPE");
                unsetenv("LANG");
                std::exit(GetACP() == c.ansi && GetOEMCP() == c.oem ? 0 : 1);
            },
            testing::ExitedWithCode(0), "")
            << c.locale;
    }
}

} // namespace
