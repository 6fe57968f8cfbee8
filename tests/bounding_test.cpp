#include "socle/stream/counted_input.h"
#include "socle/stream/counted_output.h"
#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/infinite_input.h"
#include "socle/stream/infinite_output.h"
#include "socle/stream/limited_input.h"
#include "socle/stream/safe_input.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::failure;
using support::fragment_source;
using support::raised;
using support::recording_target;
using support::rest;
using support::text;

TEST(counted_input, does_not_count_what_fails) {
    fragment_source source({"abc"});
    support::failing_source failing(source, 1);
    stream::counted_input refused(failing, 5);
    EXPECT_THROW(refused.unread("ab", 2), failure);
    EXPECT_EQ(refused.tell(), 5u);
}

TEST(counted_output, counts_writes_and_not_texts) {
    byte_vector data(4);
    stream::vector_output target(data);
    stream::counted_output out(target, 7);
    stream::little_endian_output(out).write16(0x6261);
    out.write("cde", 3);
    out.fill(2, '!');
    EXPECT_EQ(out.size(), 14u);
    out.write(narrow_string("text"));
    fragment_source in({"in"});
    out.copy_from(in);
    EXPECT_EQ(out.count(), 14u);
    EXPECT_EQ(text(data), "abcde!!textin");
    recording_target failing(1);
    stream::counted_output refused(failing, 0);
    EXPECT_THROW(refused.write("x", 1), failure);
    EXPECT_EQ(refused.tell(), 0u);
}

TEST(limited_input, counts_what_was_asked_for) {
    fragment_source source({"abc", "defgh"});
    stream::limited_input in(source, 9);
    char block[8];
    EXPECT_EQ(in.read(block, 5), 3u);
    EXPECT_EQ(in.consumed(), 5u);
    EXPECT_EQ(in.skip(9), 4u); // up to the limit, as far as that counts
    EXPECT_EQ(in.consumed(), 9u);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(rest(source), "h");
}

TEST(limited_input, seeks_within_its_limit) {
    struct seekable : fragment_source {
        using fragment_source::fragment_source;
        bool seek(uint64 where) override {
            sought = where;
            return where != 3;
        }
        uint64 sought = 0;
    } source({std::string("abcdefgh")});
    stream::limited_input in(source, 4);
    EXPECT_TRUE(in.seek(4));
    EXPECT_EQ(in.read(), -1);
    EXPECT_FALSE(in.seek(3)); // taken as consumed all the same
    EXPECT_EQ(in.consumed(), 3u);
    EXPECT_EQ(raised([&] { in.seek(5); }), "stream::limited_input: cannot seek past the end of the stream");
    EXPECT_EQ(source.sought, 3u);
    fragment_source sequential({"ab"});
    stream::limited_input fixed(sequential, 4);
    EXPECT_EQ(raised([&] { fixed.seek(1); }), "stream::input: cannot seek in a sequential stream");
    EXPECT_EQ(fixed.consumed(), 0u);
}

TEST(safe_input, throws_at_the_end) {
    fragment_source source({"abcd"});
    stream::safe_input in(source);
    std::string const ended = "stream::safe_input: unexpected end of file";
    char block[5];
    EXPECT_EQ(raised([&] { in.read(block, 5); }), ended);
    EXPECT_EQ(std::string(block, 4), "abcd");
    EXPECT_EQ(raised([&] { in.read(); }), ended);
    EXPECT_EQ(raised([&] { in.skip(1); }), ended);
    in.unread("12", 2);
    EXPECT_EQ(raised([&] { stream::big_endian_input(in).read32(); }), ended);
    recording_target out;
    in.unread("12", 2);
    EXPECT_EQ(raised([&] { in.copy_to(out); }), ended);
}

struct open_infinite : stream::infinite_input {
    using infinite_input::_copy;
};

TEST(infinite, gives_zeros_and_takes_everything) {
    open_infinite in;
    char block[3] = {1, 2, 3};
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(std::string(block, 3), std::string(3, '\0'));
    EXPECT_EQ(in.read(), 0);
    EXPECT_EQ(in.skip(uint64(1) << 40), uint64(1) << 40);
    EXPECT_EQ(in.tell(), (uint64(1) << 40) + 4);
    EXPECT_EQ(in.size(), all_ones);
    recording_target target;
    EXPECT_EQ(in._copy(target, 2), 2u);
    EXPECT_EQ(in._copy(target, 0), 0u);
    EXPECT_EQ(target.writes, (std::vector<uint32>{0, 0}));
    EXPECT_EQ(target.flushes, 2);
    std::string const no = "stream::infinite_input: do you really want to copy all the data I've got?";
    EXPECT_EQ(raised([&] { in._copy(target, all_ones); }), no);
    in.unread('x');
    EXPECT_EQ(raised([&] { in.copy_to(target); }), no);
    EXPECT_EQ(in.read(), 'x');
    EXPECT_EQ(raised([&] { in.seek(0); }), "stream::input: cannot seek in a sequential stream");

    stream::infinite_output out;
    out.write("abc", 3);
    out.write('d');
    fragment_source own({"abc", "de"});
    byte_vector const data = bytes("abcdef");
    stream::vector_input memory(data);
    out.copy_from(own);
    out.copy_from(memory);
    out.resize(99);
    EXPECT_EQ(out.size(), 4u);
    EXPECT_EQ(own.asked, std::vector<uint32>(6, 0));
    EXPECT_EQ(memory.tell(), 6u);
}

} // namespace
