#include "socle/basic/internal/byte_order.h"
#include "socle/nio/apple_double_internal.h"
#include "socle/nio/backup_filter_internal.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

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

/// A sequence in memory, which notes how far the record goes that was read last; its `n`-th read fails.
class made_up : public nio::record_source {
public:
    explicit made_up(std::string s, int n = 0) : sequence(std::move(s)), left(n) {}

    bool read(char * buffer, uint32 size, uint32 & done) override {
        if (left > 0 && --left == 0)
            return false;
        done = static_cast<uint32>(std::min<std::size_t>(size, sequence.size() - at));
        std::memcpy(buffer, sequence.data() + at, done);
        if (at == data_end && done == 20) {
            auto const data_size = basic::load<uint64>(buffer + 8, false);
            auto const name_size = basic::load<uint32>(buffer + 16, false);
            data_end = static_cast<std::size_t>(at + 20 + name_size + data_size);
        }
        at += done;
        return true;
    }
    void skip_data() override { at = std::min(data_end, sequence.size()); }
    [[noreturn]] void fail(char const * message) override { throw std::runtime_error(message); }

    std::string sequence;
    std::size_t at = 0;
    std::size_t data_end = 0;
    int left;
};

std::string filtered(std::string const & sequence, uint32 size, int n = 0) {
    made_up source(sequence, n);
    nio::backup_filter filter;
    std::string all, block(size, '\0');
    try {
        for (uint32 got; (got = filter.read(source, block.data(), size)) > 0;)
            all.append(block, 0, got);
        EXPECT_EQ(filter.read(source, block.data(), size), 0u);
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
        for (uint32 const size : {1u, 7u, 20u, 64u, 5000u})
            EXPECT_EQ(filtered(c.sequence, size), c.result) << size;
}

TEST(backup_filter, says_where_a_sequence_is_broken) {
    std::string const good = record(4, ":note", "data");
    for (std::size_t length = 1; length < good.size(); ++length) {
        auto const result = filtered(good.substr(0, length), 64);
        EXPECT_EQ(result, length < 20   ? "invalid NTFS stream structure"
                          : length < 30 ? "invalid NTFS stream name"
                                        : good.substr(0, length));
    }
    EXPECT_EQ(filtered(little(uint64(4)) + little(uint64(1)) + little(uint32(0xFFFFFFFF)), 64),
              "invalid NTFS stream name");
    char const * const failures[] = {"invalid NTFS stream structure", "invalid NTFS stream name",
                                     "cannot read NTFS stream"};
    for (int n = 1; n <= 3; ++n)
        EXPECT_EQ(filtered(good, 64, n), failures[n - 1]);
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
