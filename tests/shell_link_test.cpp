#include "socle/platform/environment.h"
#include "socle/platform/errors.h"
#include "socle/platform/shell_link_reader.h"
#include "socle/platform/shell_links.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

namespace {

using platform::read_shell_link;

std::string sample(char const * name) {
    std::ifstream in(std::string(TEST_DATA "/links/") + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// The target, "?" if there is none.
wide_string target_of(std::string const & link) {
    wide_string target = u"?";
    auto const latin = [](std::string_view text) {
        wide_string wide;
        for (char c : text)
            wide += static_cast<unsigned char>(c);
        return wide;
    };
    bool const resolved = read_shell_link(link, latin, target);
    EXPECT_EQ(resolved, target != u"?");
    return target;
}

std::string number(unsigned value, int width = 4) {
    std::string bytes;
    for (int i = 0; i < width; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

/// A link with this link info, without strings, and with the block that ends it.
std::string link_with_info(std::string const & info) {
    std::string header = sample("local_ascii.lnk").substr(0, 0x4c);
    return header.replace(20, 4, number(0x82)) + info + number(0);
}

/// A link info of `flags`: a header of that many bytes, of which those from byte 12 on are given, then `rest`.
std::string info(unsigned flags, std::string const & offsets, std::string const & rest) {
    std::size_t const header = 12 + offsets.size();
    return number(static_cast<unsigned>(header + rest.size())) + number(static_cast<unsigned>(header)) + number(flags)
           + offsets + rest;
}

std::string const volume_id = number(17) + number(3) + number(0) + number(16) + std::string(1, '\0');

TEST(shell_link, samples) {
    struct row {
        char const * name;
        wide_string target;
    };
    for (row const & r : {
             row{"arguments.lnk", u"C:\\socle\\tool.exe"},
             row{"directory.lnk", u"C:\\socle\\folder"},
             row{"local_ascii.lnk", u"C:\\socle\\target.txt"},
             row{"nonascii.lnk", u"C:\\socle\\Gr\xf6\xdf\x65 \xe9t\xe9.txt"},
             row{"relative.lnk", u"C:\\socle\\bin\\tool.exe"},
         }) {
        std::string const link = sample(r.name);
        EXPECT_EQ(target_of(link), r.target) << r.name;
        for (std::size_t size = 0; size < link.size(); ++size)
            EXPECT_EQ(target_of(link.substr(0, size)), u"?") << r.name << " cut off at " << size;
    }
}

struct patch {
    char const * what;
    wide_string target;
    std::string link;
};

TEST(shell_link, other_paths) {
    std::string const zero(1, '\0');
    std::string const wide_base("D\0:\0\\\0\x16\x04\0\0", 10);
    std::string const wide_suffix("0\0\0\0", 4);
    std::string const share = number(0x14 + 8) + number(0) + number(0x14) + number(0) + number(0) + "\\\\h\\sha" + zero;
    for (patch const & p : {
             patch{"Unicode before ANSI", u"D:\\\x416\\0",
                   link_with_info(info(1, number(36) + number(53) + number(0) + number(55) + number(56) + number(66),
                                       volume_id + "D:" + zero + wide_base + wide_suffix))},
             patch{"share", u"\\\\h\\sha\\d\\f",
                   link_with_info(info(2, number(0) + number(0) + number(28) + number(56), share + "d\\f" + zero))},
             patch{"neither local nor on a share", u"?",
                   link_with_info(info(0, number(0) + number(0) + number(0) + number(28), zero))},
             patch{"empty path", u"?",
                   link_with_info(info(1, number(28) + number(45) + number(0) + number(45), volume_id + zero))},
             patch{"4096 bytes", wide_string(4096, u'x'),
                   link_with_info(info(1, number(28) + number(45) + number(0) + number(45 + 4096),
                                       volume_id + std::string(4096, 'x') + zero))},
             patch{"4097 bytes", u"?",
                   link_with_info(info(1, number(28) + number(45) + number(0) + number(45 + 4097),
                                       volume_id + std::string(4097, 'x') + zero))},
         })
        EXPECT_EQ(target_of(p.link), p.target) << p.what;
}

// Each number of the link info, and the sizes around it, pointing past what they may.
TEST(shell_link, wrong_numbers) {
    std::string const good = sample("local_ascii.lnk");
    constexpr std::size_t info_at = 0xf9;
    struct row {
        char const * what;
        std::size_t at;
        std::size_t width;
    };
    for (row const & r : {
             row{"header size", 0, 4},
             row{"id list size", 0x4c, 2},
             row{"info size", info_at, 4},
             row{"info header size", info_at + 4, 4},
             row{"volume id offset", info_at + 12, 4},
             row{"volume id size", info_at + 28, 4},
             row{"local path offset", info_at + 16, 4},
             row{"suffix offset", info_at + 24, 4},
             row{"size of the last block", good.size() - 4, 4},
         }) {
        std::string const end = number(static_cast<unsigned>(good.size()));
        for (std::string const & value : {std::string(4, '\xff'), std::string("\0\0\0\x80", 4), end}) {
            std::string link = good;
            link.replace(r.at, r.width, value.substr(0, r.width));
            EXPECT_EQ(target_of(link), u"?") << r.what;
        }
    }
    EXPECT_EQ(target_of(std::string(1'000'000, 'L')), u"?");
}

// The file itself: what is no file must not be waited for.
TEST(shell_link, files) {
    scratch const folder;
    std::filesystem::create_directory(folder.host("folder.lnk"));
    folder.write("empty.lnk", "");
    folder.write("huge.lnk", sample("local_ascii.lnk"));
    std::filesystem::resize_file(folder.host("huge.lnk"), 1 << 30);
    support::make_fifo(folder.host("pipe.lnk"));
    for (char const * name : {"folder.lnk", "empty.lnk", "huge.lnk", "pipe.lnk", "missing.lnk"}) {
        wide_string target = u"as it was";
        EXPECT_FALSE(platform::ResolveShellLink(folder.path(name), target)) << name;
        EXPECT_EQ(target, u"as it was") << name;
    }
    wide_string target;
    platform::SetLastError(4711);
    EXPECT_TRUE(platform::ResolveShellLink(platform::from_host(TEST_DATA "/links/nonascii.lnk"), target));
    EXPECT_TRUE(platform::ResolveShellLink(platform::from_host(TEST_DATA "/links/local_ascii.lnk"), target));
    EXPECT_EQ(platform::GetLastError(), 4711u) << "which success leaves alone";
    EXPECT_TRUE(platform::ResolveShellLink(platform::from_host(TEST_DATA "/links/nonascii.lnk"), target));
    EXPECT_EQ(target, u"C:\\socle\\Gr\xf6\xdf\x65 \xe9t\xe9.txt");
}

TEST(environment, text) {
    support::set_variable("SOCLE_TEST", "C:\\\xc3\xa9 \xe2\x82\xac \xd0\xb6");
    wide_string wide;
    narrow_string narrow;
    EXPECT_TRUE(platform::_wgetenv("SOCLE_TEST", wide));
    EXPECT_EQ(wide, u"C:\\\xe9 \u20ac \u0436");
    EXPECT_TRUE(platform::getenv("SOCLE_TEST", narrow));
    EXPECT_EQ(narrow, "C:\\\xe9 \x80 ?");
    support::set_variable("SOCLE_TEST", nullptr);
    EXPECT_FALSE(platform::getenv("SOCLE_TEST", narrow));
    EXPECT_EQ(narrow, "C:\\\xe9 \x80 ?");
}

} // namespace
