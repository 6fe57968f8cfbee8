#include "socle/nio/apple_double_internal.h"
#include "tests/support/record_sequence.h"

#include <gtest/gtest.h>

namespace {

template <class Number>
std::string little(Number value) {
    std::string bytes;
    for (std::size_t i = 0; i < sizeof value; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

std::string record(uint32 id, std::string const & name, std::string const & data) {
    std::string units;
    for (char const c : name)
        units += {c, '\0'};
    return little(id) + little(uint32(0)) + little(uint64(data.size())) + little(uint32(units.size())) + units + data;
}

std::string filtered(std::string const & sequence, int n = 0) {
    support::record_sequence source(sequence, n);
    nio::backup_filter filter;
    std::string all, block(64, '\0');
    try {
        for (uint32 got; (got = filter.read(source, block.data(), 64)) > 0;)
            all.append(block, 0, got);
    } catch (std::runtime_error const & e) {
        return e.what();
    }
    return all;
}

TEST(backup_filter, leaves_out_what_is_kept_by_other_means) {
    std::string const note = record(4, ":note:$DATA", "remember"), rights = record(3, "", "rights");
    std::string const long_name = record(4, ":" + std::string(200, 'n'), std::string(1000, 'd'));
    struct {
        std::string sequence, result;
    } const table[] = {
        {"", ""},
        {record(1, "", "the file itself"), ""},
        {record(1, "", "data") + note, note},
        {record(4, ":AFP_Resource:$DATA", "r") + note + record(4, ":AFP_AfpInfo:$DATA", "i"), note},
        {record(4, ":AFP_ResourceAndMore", "r") + record(4, ":AFP_AfpInfo", "i"), ""},
        {record(4, ":AFP_Resourc", "x"), record(4, ":AFP_Resourc", "x")},
        {record(4, ":afp_afpinfo", "x"), record(4, ":afp_afpinfo", "x")},
        {record(7, ":AFP_Resource", "x"), record(7, ":AFP_Resource", "x")},
        {rights + record(4, ":empty", "") + long_name, rights + long_name},
    };
    for (auto const & c : table)
        EXPECT_EQ(filtered(c.sequence), c.result);
}

TEST(backup_filter, says_where_a_sequence_is_broken) {
    std::string const good = record(4, ":note", "data");
    for (std::size_t length = 1; length < good.size(); ++length) {
        auto const result = filtered(good.substr(0, length));
        EXPECT_EQ(result, length < 20   ? "invalid NTFS stream structure"
                          : length < 30 ? "invalid NTFS stream name"
                                        : good.substr(0, length));
    }
    EXPECT_EQ(filtered(little(uint64(4)) + little(uint64(1)) + little(uint32(0xFFFFFFFF))), "invalid NTFS stream name");
    char const * const failures[] = {"invalid NTFS stream structure", "invalid NTFS stream name",
                                     "cannot read NTFS stream"};
    for (int n = 1; n <= 3; ++n)
        EXPECT_EQ(filtered(good, n), failures[n - 1]);
}

TEST(apple_double, has_a_head_with_two_entries) {
    auto const head = nio::apple_double::head({1, 2});
    std::string const own(head.begin(), head.end());
    EXPECT_EQ(own, std::string("\0\5\x16\7\0\2\0\0"
                               "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                               "\0\2"
                               "\0\0\0\x09\0\0\0\x32\0\0\0\x20"
                               "\0\0\0\x09\0\0\0\x52\0\0\0\0\1\2",
                               52)
                       + std::string(30, '\0'));
}

} // namespace
