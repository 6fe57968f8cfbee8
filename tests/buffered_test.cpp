#include "socle/nio/buffered_input.h"
#include "socle/nio/buffered_output.h"
#include "socle/stream/buffered_input.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using support::fragment_source;
using support::recording_target;
using support::rest;

// The buffers of the family nio. What those of the family stream do, random chains show.

TEST(buffers, refill_or_are_passed_by) {
    fragment_source source({std::string(300, 'x')});
    source.skip(10);
    nio::buffered_input in(source, 100);
    source.asked.clear();
    char block[200];
    EXPECT_EQ(in.read(block, 49), 49u);
    EXPECT_EQ(in.read(block, 51), 51u);
    EXPECT_EQ(in.read(block, 50), 50u);
    EXPECT_EQ(in.read(block, 0), 0u);
    EXPECT_EQ(source.asked, (std::vector<uint32>{100, 50}));
    EXPECT_EQ(in.tell(), 160u);
    EXPECT_EQ(in.size(), 300u);
    EXPECT_EQ(in.read(block, 200), 140u);
    EXPECT_EQ(in.read(block, 1), 0u);
    EXPECT_EQ(in.tell(), 300u);
}

TEST(buffers, ask_the_stream_beneath_at_most_once) {
    fragment_source source({"abc", "de", "fghij"});
    nio::buffered_input in(source, 8);
    char block[16];
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.read(block, 3), 2u); // what came was short
    EXPECT_EQ(in.read(block, 1), 1u);
    EXPECT_EQ(source.asked, (std::vector<uint32>{8, 8, 8}));
    EXPECT_EQ(in.read(block, 16), 4u);
}

TEST(buffers, do_not_believe_a_liar) {
    support::lying_source liar;
    nio::buffered_input in(liar, 8);
    char block[20];
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.read(block, 20), 20u);
    EXPECT_EQ(std::string(block, 20), std::string(20, 'l'));
    EXPECT_EQ(in.tell(), 23u);
}

TEST(buffers, hold_small_writes_and_pass_large_ones) {
    recording_target target;
    {
        nio::buffered_output out(target, 4);
        for (std::string const piece : {"ab", "cd", "efg", "hi", "jk", "lmno"}) // the second fits exactly
            out.write(piece.data(), static_cast<uint32>(piece.size()));
        EXPECT_EQ(target.writes, (std::vector<uint32>{4, 3, 4, 4}));
        for (char const byte : {'p', 'q', 'r', 's', 't'})
            out.write(static_cast<unsigned char>(byte));
        EXPECT_EQ(target.writes.size(), 5u);
        EXPECT_EQ(out.tell(), 20u);
        EXPECT_EQ(out.size(), 20u);
        out.flush();
        out.flush();
        EXPECT_EQ(target.writes.size(), 6u);
        EXPECT_EQ(target.flushes, 0);
        out.write("uv", 2);
    }
    EXPECT_EQ(target.data, "abcdefghijklmnopqrstuv");
    nio::buffered_output(target, 0).write("w", 1);
    EXPECT_EQ(target.data.back(), 'w');
    recording_target refusing(1);
    nio::buffered_output(refusing, 8).write("lost without a word", 4);
}

/// A caller's class above a buffered stream, which may not change what its base does.
struct callers_input : stream::buffered_input {
    using buffered_input::_copy;
    using buffered_input::buffered_input;
    using buffered_input::refill;
};

TEST(buffered_input, copies_byte_by_byte_for_a_callers_class) {
    fragment_source source({"abc", "defgh"});
    callers_input in(source, 4);
    recording_target out;
    EXPECT_EQ(in._copy(out, 2), 2u);
    EXPECT_EQ(out.writes, (std::vector<uint32>{0, 0}));
    EXPECT_EQ(in._copy(out, 0), 0u);
    EXPECT_EQ(in._copy(out, all_ones), 6u);
    EXPECT_EQ(out.flushes, 3);
    EXPECT_EQ(out.data, "abcdefgh");
    in.unread("0123456", 7);
    in.refill(); // nothing fits
    EXPECT_EQ(rest(in), "0123456");
}

} // namespace
