#include "socle/nio/blocks.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/copier.h"
#include "socle/stream/filter_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

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
    support::lying_source from;
    support::recording_target to;
    EXPECT_EQ(nio::copy(from, to, 20, 8), 20u);
    EXPECT_EQ(to.data, std::string(20, 'l'));
}

} // namespace
