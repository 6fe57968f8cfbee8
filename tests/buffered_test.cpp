#include "socle/nio/buffered_input.h"
#include "socle/nio/buffered_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::fragment_source;
using support::recording_target;
using support::rest;
using support::text;

/// A caller's class above a buffered stream, which may not change what its base does.
struct callers_input : stream::buffered_input {
    using buffered_input::_copy;
    using buffered_input::buffered_input;
    using buffered_input::refill;
};

TEST(buffered_input, reads_ahead_and_gives_back) {
    byte_vector const data = support::pattern(100);
    stream::vector_input source(data);
    char block[64];
    {
        stream::buffered_input in(source, 16);
        EXPECT_EQ(source.tell(), 0u);
        EXPECT_EQ(in.read(), data[0]);
        EXPECT_EQ(source.tell(), 16u);
        EXPECT_EQ(in.tell(), 1u);
        in.yield();
        EXPECT_EQ(source.tell(), 1u);
        EXPECT_EQ(in.tell(), 1u);
        EXPECT_EQ(in.read(block, 8), 8u); // half the buffer goes past it
        EXPECT_EQ(source.tell(), 9u);
        EXPECT_EQ(in.read(block, 7), 7u); // less fills it
        EXPECT_EQ(source.tell(), 25u);
        EXPECT_EQ(in.read(block, 40), 40u);
        EXPECT_EQ(source.tell(), 56u);
        EXPECT_EQ(in.read(block, 1), 1u);
        EXPECT_EQ(in.skip(20), 20u);
        EXPECT_EQ(source.tell(), 77u);
        EXPECT_EQ(in.read(), data[77]);
    }
    EXPECT_EQ(source.tell(), 78u);
    EXPECT_EQ(rest(source), text({data.begin() + 78, data.end()}));
}

TEST(buffered_input, asks_the_stream_beneath_at_most_once) {
    fragment_source source({"abc", "de", "fghij"});
    stream::buffered_input in(source, 8);
    char block[16];
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.read(block, 3), 2u); // what came was short
    EXPECT_EQ(in.read(), 'f');
    EXPECT_EQ(in.read(block, 0), 0u);
    EXPECT_EQ(source.asked, (std::vector<uint32>{8, 8, 8}));
    EXPECT_EQ(in.size(), 10u);
    EXPECT_EQ(rest(in), "ghij");
}

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

TEST(buffered_input, gives_a_single_byte_back_through_the_block_form) {
    struct upper_case : stream::buffered_input {
        using buffered_input::buffered_input;
        using buffered_input::unread;
        void unread(char const * data, uint32 count) override {
            std::string raised(data, count);
            std::transform(raised.begin(), raised.end(), raised.begin(), [](char c) { return char(c - 32); });
            buffered_input::unread(raised.data(), count);
        }
    };
    fragment_source source({"bc"});
    upper_case in(source, 4);
    in.read();
    in.unread('a');
    EXPECT_EQ(rest(in), "Ac");
}

TEST(buffered_input, does_not_believe_a_liar) {
    support::lying_source liar;
    stream::buffered_input in(liar, 8);
    EXPECT_EQ(in.read(), 'l');
    char block[20];
    EXPECT_EQ(in.read(block, 20), 20u);
    EXPECT_EQ(in.skip(9), 9u);
    EXPECT_EQ(in.tell(), 30u);
}

TEST(wide_buffered_input, refills_or_passes_by) {
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
    support::lying_source liar;
    nio::buffered_input believing(liar, 8);
    EXPECT_EQ(believing.read(block, 3), 3u);
    EXPECT_EQ(believing.read(block, 3), 3u);
    EXPECT_EQ(believing.tell(), 6u);
}

TEST(buffered_output, holds_small_writes_and_passes_large_ones) {
    recording_target target;
    stream::buffered_output out(target, 4);
    out.write("ab", 2);
    out.write("cd", 2); // fits exactly
    EXPECT_TRUE(target.writes.empty());
    out.write("efg", 3);
    EXPECT_EQ(target.data, "abcd");
    EXPECT_EQ(out.tell(), 7u);
    out.write(narrow_string("hi"));
    out.write('j');
    out.write(static_cast<unsigned char>('k'));
    out.write("lmno", 4);
    EXPECT_EQ(target.writes, (std::vector<uint32>{4, 3, 4, 4}));
    out.write('p');
    EXPECT_EQ(target.tell(), 15u);
    out.end();
    EXPECT_EQ(target.data, "abcdefghijklmnop");
    EXPECT_EQ(target.flushes, 0);
    out.write('q');
    out.flush_through();
    EXPECT_EQ(target.data, "abcdefghijklmnopq");
    EXPECT_EQ(target.flushes, 1);
    fragment_source in({"st"});
    out.write('r');
    out.copy_from(in);
    EXPECT_EQ(target.data, "abcdefghijklmnopqrst");
    EXPECT_EQ(out.tell(), 20u);
}

TEST(buffered_output, resizes_through_what_it_holds) {
    byte_vector vector = bytes("..");
    {
        stream::vector_output target(vector, 2);
        stream::buffered_output out(target, 8);
        out.write("abcdef", 6);
        out.resize(5);
        EXPECT_EQ(text(vector), "..abc");
        out.write("gh", 2);
        EXPECT_THROW(out.resize(3), stream::exception); // a vector is not cut below its position
        EXPECT_EQ(out.tell(), 7u);
    }
    EXPECT_EQ(text(vector), "..abcgh");
    recording_target target;
    stream::buffered_output out(target, 8);
    out.write("ab", 2);
    out.resize(4);
    EXPECT_EQ(out.tell(), 4u);
    out.write("c", 1);
    out.flush();
    EXPECT_EQ(target.data, std::string("ab\0\0c", 5));
    out.write("dropped", 7);
    out.resize(5);
    EXPECT_EQ(out.tell(), 5u);
    out.flush();
    EXPECT_EQ(target.data.size(), 5u);
}

TEST(wide_buffered_output, holds_what_fits) {
    recording_target target;
    {
        nio::buffered_output out(target, 100);
        std::string const data(250, 'x');
        out.write(data.data(), 99);
        out.write('y');
        EXPECT_TRUE(target.writes.empty());
        out.write(data.data(), 1);
        out.write(data.data(), 100);
        EXPECT_EQ(target.writes, (std::vector<uint32>{100, 1, 100}));
        EXPECT_EQ(out.tell(), 201u);
        out.write(data.data(), 40);
        EXPECT_EQ(out.size(), 241u);
        out.flush();
        out.flush();
        EXPECT_EQ(target.flushes, 0);
        out.write(data.data(), 3);
    }
    EXPECT_EQ(target.writes, (std::vector<uint32>{100, 1, 100, 40, 3}));
    nio::buffered_output(target, 0).write('z');
    EXPECT_EQ(target.data.back(), 'z');
}

TEST(buffered_output, goes_without_a_word_where_nobody_can_hear_it) {
    recording_target refusing(1), other(1);
    stream::buffered_output(refusing, 8).write("lost", 4);
    nio::buffered_output(other, 8).write("lost", 4);
    EXPECT_EQ(refusing.data + other.data, "");
}

TEST(buffered, integers_take_the_same_paths_as_single_calls) {
    // Wherever the value lies against the end of the buffer, the calls beneath are those of single bytes.
    for (uint32 size = 1; size < 12; ++size) {
        for (uint32 lead = 0; lead < 12; ++lead) {
            recording_target fast_target, slow_target;
            {
                stream::buffered_output fast(fast_target, size), slow(slow_target, size);
                stream::filter_output between(slow); // lends nothing
                for (stream::output * out :
                     {static_cast<stream::output *>(&fast), static_cast<stream::output *>(&between)}) {
                    out->fill(lead, '.');
                    stream::big_endian_output big(*out);
                    stream::little_endian_output little(*out);
                    big.write32(0x61626364);
                    little.write32(0x65666768);
                    little.write16(0x696A);
                    big.write64(0x6B6C6D6E6F707172);
                }
            }
            EXPECT_EQ(fast_target.writes, slow_target.writes) << size << ' ' << lead;
            EXPECT_EQ(fast_target.data, slow_target.data);
        }
    }
}

} // namespace
