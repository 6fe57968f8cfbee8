#include "socle/nio/blocks.h"
#include "socle/nio/buffered_input.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/copier.h"
#include "socle/stream/filter_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using support::failure;
using support::fragment_source;
using support::raised;
using support::recording_target;
using support::text;

TEST(transform, refuses_to_work) {
    stream::transform none;
    fragment_source source({"a"});
    recording_target target;
    EXPECT_EQ(raised([&] { none.process(source, target); }),
              "stream::transform: full stream processing is not implemented");
    EXPECT_EQ(raised([&] { none.process(source, target, all_ones); }),
              "stream::transform: partial stream processing is not implemented");
}

TEST(copier, moves_in_blocks) {
    struct {
        uint32 size;
        uint64 count;
        std::vector<uint32> asked, writes;
    } const table[] = {
        {4, all_ones, {4, 4, 4, 4}, {4, 4, 2, 0}},
        {4, 10, {4, 4, 2}, {4, 4, 2}},
        {4, 11, {4, 4, 3}, {4, 4, 2}},
        {4, 8, {4, 4}, {4, 4}},
        {4, 0, {0}, {0}},
        {65536, 3, {3}, {3}},
        {65536, all_ones, {65536, 65536}, {10, 0}},
        {0, 2, {1, 1}, {1, 1}},
    };
    std::string const data = "0123456789";
    for (auto const & c : table) {
        fragment_source source({data});
        recording_target target;
        target.write("before", 6);
        target.mark();
        target.writes.clear();
        stream::copier copier(c.size);
        auto const expected = static_cast<std::size_t>(std::min<uint64>(c.count, data.size()));
        EXPECT_EQ(copier.process(source, target, c.count), expected);
        EXPECT_EQ(source.asked, c.asked);
        EXPECT_EQ(target.writes, c.writes);
        EXPECT_EQ(target.drift(), expected);
        // The same from memory, to a caller's sink and to one of the library.
        byte_vector const vector = support::bytes(data);
        stream::vector_input memory(vector), again(vector);
        recording_target callers;
        byte_vector copy;
        stream::vector_output library(copy);
        EXPECT_EQ(copier.process(memory, callers, c.count), expected);
        EXPECT_EQ(callers.writes, c.writes);
        EXPECT_EQ(copier.process(again, library, c.count), expected);
        EXPECT_EQ(text(copy), data.substr(0, expected));
        EXPECT_EQ(again.tell(), expected);
    }
    EXPECT_EQ(stream::copier().buffer_size(), 65536u);
}

TEST(copier, copies_within_one_array_as_through_its_block) {
    for (bool const lent : {false, true}) {
        byte_vector data = support::pattern(60);
        auto * const bytes = reinterpret_cast<char *>(data.data());
        std::string const expected = text(data).substr(3, 40);
        stream::array_input in(bytes + 2, 42);
        in.read();
        if (!lent)
            in.unread(bytes[2]), in.skip(1);
        stream::array_output array(bytes + 12, 44);
        stream::filter_output out(array);
        stream::copier(40).process(in, out, 40);
        EXPECT_EQ(text(data).substr(12, 40), expected) << lent;
    }
}

TEST(copier, stops_where_a_stream_fails) {
    auto const data = support::pattern(50);
    for (int n = 1; n <= 7; ++n) {
        for (bool const source_fails : {true, false}) {
            stream::vector_input memory(data);
            support::failing_source source(memory, source_fails ? n : 0);
            recording_target target(source_fails ? 0 : n);
            bool failed = false;
            try {
                stream::copier(10).process(source, target);
            } catch (failure const &) {
                failed = true;
            }
            EXPECT_EQ(failed, n <= 6);
            auto const moved = std::min<std::size_t>(static_cast<std::size_t>(n - 1) * 10, 50);
            EXPECT_EQ(target.data, text({data.begin(), data.begin() + long(moved)}));
            EXPECT_EQ(target.drift(), moved);
        }
    }
}

struct copying {
    char const * name;
    std::size_t available;
    uint64 count;
    uint32 buffer_size;
    uint64 copied;
    std::vector<uint32> asked, written;
};

TEST(blocks, copy_asks_and_writes_in_blocks) {
    copying const table[] = {
        {"nothing", 30, 0, 64, 0, {}, {}},
        {"one short block ends it", 30, 100, 64, 30, {64}, {30}},
        {"a full block does not end it", 200, 100, 50, 100, {50, 50}, {50, 50}},
        {"the last block is what is left", 200, 100, 64, 100, {64, 36}, {64, 36}},
        {"the end on a block boundary is written too", 64, 100, 64, 64, {64, 36}, {64, 0}},
        {"a block of 0 counts as 1", 3, 2, 0, 2, {1, 1}, {1, 1}},
    };
    for (auto const & c : table) {
        support::fragment_source from({std::string(c.available, 'x')});
        support::recording_target to;
        EXPECT_EQ(nio::copy(from, to, c.count, c.buffer_size), c.copied) << c.name;
        EXPECT_EQ(from.asked, c.asked) << c.name;
        EXPECT_EQ(to.writes, c.written) << c.name;
    }
}

TEST(blocks, skip_reads_what_it_drops_and_fill_always_arrives) {
    support::fragment_source from({"abcdef"});
    EXPECT_EQ(nio::skip(from, 4, 3), 4u);
    EXPECT_EQ(from.asked, (std::vector<uint32>{3, 1}));
    EXPECT_EQ(nio::skip(from, 4, 65536), 2u);

    support::recording_target to;
    nio::fill(to, 0, 'f', 65536);
    EXPECT_TRUE(to.writes.empty());
    nio::fill(to, 65537, 'f', 65536);
    EXPECT_EQ(to.writes, (std::vector<uint32>{65536, 1}));
    EXPECT_EQ(to.data, std::string(65537, 'f'));
}

TEST(blocks, totals_pass_thirty_two_bits) {
    nio::infinite_input zeros('\0');
    nio::infinite_output nowhere;
    uint64 const count = (uint64(1) << 32) + 5;
    EXPECT_EQ(nio::copy(zeros, nowhere, count, 0x4000000), count);
    EXPECT_EQ(nowhere.tell(), count);
    EXPECT_EQ(nowhere.size(), count);
    EXPECT_EQ(zeros.tell(), count);
    EXPECT_EQ(zeros.size(), all_ones);
    EXPECT_TRUE(zeros.seek(7) && nowhere.seek(9));
    EXPECT_EQ(zeros.tell(), 7u);
    EXPECT_EQ(nowhere.tell(), 9u);
}

TEST(blocks, a_lying_source_is_not_believed) {
    struct liar : nio::input {
        uint32 read(char * buffer, uint32 count) override {
            std::fill_n(buffer, count, 'l');
            return all_ones & 0xFFFFFFFF;
        }
    } from;
    support::recording_target to;
    EXPECT_EQ(nio::copy(from, to, 20, 8), 20u);
    EXPECT_EQ(to.data, std::string(20, 'l'));
    nio::buffered_input in(from, 8);
    char block[20];
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.read(block, 20), 20u);
    EXPECT_EQ(std::string(block, 20), std::string(20, 'l'));
}

} // namespace
