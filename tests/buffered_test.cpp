#include "socle/nio/buffered_input.h"
#include "socle/nio/buffered_output.h"
#include "socle/stream/array_output.h"
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

template <class Family>
struct buffers : testing::Test {};
struct narrow {
    using input = stream::buffered_input;
    using output = stream::buffered_output;
};
struct wide {
    using input = nio::buffered_input;
    using output = nio::buffered_output;
};
using families = testing::Types<narrow, wide>;
TYPED_TEST_SUITE(buffers, families);

TYPED_TEST(buffers, refill_or_are_passed_by) {
    fragment_source source({std::string(300, 'x')});
    source.skip(10);
    typename TypeParam::input in(source, 100);
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

TYPED_TEST(buffers, ask_the_stream_beneath_at_most_once) {
    fragment_source source({"abc", "de", "fghij"});
    typename TypeParam::input in(source, 8);
    char block[16];
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.read(block, 3), 2u); // what came was short
    EXPECT_EQ(in.read(block, 1), 1u);
    EXPECT_EQ(source.asked, (std::vector<uint32>{8, 8, 8}));
    EXPECT_EQ(in.read(block, 16), 4u);
}

TYPED_TEST(buffers, do_not_believe_a_liar) {
    support::lying_source liar;
    typename TypeParam::input in(liar, 8);
    char block[20];
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.read(block, 20), 20u);
    EXPECT_EQ(std::string(block, 20), std::string(20, 'l'));
    EXPECT_EQ(in.tell(), 23u);
}

TYPED_TEST(buffers, hold_small_writes_and_pass_large_ones) {
    recording_target target;
    {
        typename TypeParam::output out(target, 4);
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
    typename TypeParam::output(target, 0).write("w", 1);
    EXPECT_EQ(target.data.back(), 'w');
    recording_target refusing(1);
    typename TypeParam::output(refusing, 8).write("lost without a word", 4);
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

TEST(buffered_output, goes_on_behind_what_passes_it) {
    recording_target target;
    stream::buffered_output out(target, 4);
    out.write('a');
    out.end();
    EXPECT_EQ(target.data, "a");
    EXPECT_EQ(target.flushes, 0);
    out.write('b');
    out.flush_through();
    EXPECT_EQ(target.data, "ab");
    EXPECT_EQ(target.flushes, 1);
    fragment_source in({"de"});
    out.write(narrow_string("c"));
    out.copy_from(in);
    EXPECT_EQ(target.data, "abcde");
    EXPECT_EQ(out.tell(), 5u);
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

TEST(buffered_output, stands_where_a_failed_copy_left_the_stream_beneath) {
    std::string memory(6, '.');
    stream::array_output beneath(memory.data(), 6);
    stream::buffered_output out(beneath, 8);
    out.write("ab", 2);
    byte_vector const data = bytes("cdefg");
    stream::vector_input too_large(data);
    EXPECT_THROW(out.copy_from(too_large), stream::exception);
    EXPECT_EQ(out.tell(), 2u);
    EXPECT_EQ(memory, "ab....");
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
