#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/copier.h"
#include "socle/stream/text_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

#include <span>
#include <stdexcept>
#include <string_view>

namespace {

using support::bytes;
using support::raised;
using support::recording_target;
using support::rest;
using support::text;
using namespace std::string_literals;

struct open_array_input : stream::array_input {
    using array_input::_copy;
    using array_input::array_input;
};

uint64 const too_much = uint64(1) << 32;

TEST(memory_input, reads_texts_and_blocks_of_any_kind) {
    std::string const letters = "abc";
    byte_vector const vector = bytes(letters);
    stream::array_input from_text(letters), from_bytes(vector);
    for (stream::array_input * in : {&from_text, &from_bytes}) {
        char block[5] = {};
        EXPECT_EQ(in->read(std::span(block)), 3u);
        EXPECT_EQ(std::string(block), letters);
        EXPECT_EQ(in->read(std::span(block)), 0u);
    }
    if (auto const most = static_cast<std::size_t>(too_much))
        EXPECT_EQ(raised([&] { stream::array_input(std::string_view(letters.data(), most)); }),
                  "stream::array_input: cannot read more than the maximum array size");
}

TEST(vector_output, takes_bytes_texts_and_blocks) {
    byte_vector vector;
    stream::vector_output out(vector);
    std::string const two = "\x02";
    unsigned char const bytes[] = {4, 5};
    out.write(0);
    out.write("\x01");
    out.write(two);
    out.write(std::string_view("\x03"));
    out.write(std::span(bytes));
    out.write(std::span<unsigned char const>());
    out.write(0x106);
    EXPECT_EQ(vector, (byte_vector{0, 1, 2, 3, 4, 5, 6}));
}

TEST(memory_input, copies_out_of_an_array_stay_in_place) {
    open_array_input in("abcdef", 6, 2);
    recording_target out;
    EXPECT_EQ(in._copy(out, 3), 3u);
    EXPECT_EQ(out.data, "cde");
    EXPECT_EQ(out.writes, (std::vector<uint32>{3}));
    EXPECT_EQ(in._copy(out, 0), 0u);
    EXPECT_EQ(out.flushes, 2);
    EXPECT_EQ(in.tell(), 2u);
    std::string const too_far = "stream::array_input: cannot copy more data than the array contains";
    EXPECT_EQ(raised([&] { in._copy(out, 5); }), too_far);
    EXPECT_EQ(raised([&] { in._copy(out, all_ones); }), too_far);
    EXPECT_EQ(raised([&] { in._copy(out, too_much); }),
              "stream::array_input: cannot copy more than the maximum array size");
    open_array_input beyond("ab", 2, 9);
    EXPECT_EQ(raised([&] { beyond._copy(out, 1); }), too_far);
}

TEST(memory_input, a_vector_may_change_under_its_stream) {
    byte_vector vector = bytes("abcdef");
    stream::vector_input in(vector);
    EXPECT_EQ(in.read(), 'a');
    vector = bytes("uvwxyz and much more, in another place of memory");
    EXPECT_EQ(in.read(), 'v');
    vector.resize(1);
    EXPECT_EQ(in.read(), -1);
    char block[4];
    EXPECT_EQ(in.read(block, 4), 0u);
    recording_target out;
    EXPECT_EQ(in.copy_to(out), 0u);
    EXPECT_EQ(in.tell(), 2u);
}

TEST(memory_input, assignment_takes_the_place_and_the_bytes_given_back) {
    stream::array_input one("abc", 3), two("uvwxyz", 6, 1);
    EXPECT_EQ(two.read(), 'v');
    EXPECT_EQ(one.read(), 'a');
    two.unread("!", 1);
    one = two;
    EXPECT_EQ(rest(one), "!wxyz");
    EXPECT_EQ(rest(two), "!wxyz");
    EXPECT_EQ(one.size(), 6u);
}

TEST(array_output, takes_blocks_from_its_own_memory_byte_by_byte) {
    char memory[] = "..0123";
    un::array<char> whole(memory, 6);
    stream::array_output(whole, 3).write(memory + 2, 3);
    EXPECT_STREQ(memory, "..0000");
}

TEST(vector_output, takes_blocks_from_its_own_vector) {
    byte_vector vector = bytes("abc");
    vector.shrink_to_fit();
    stream::vector_output out(vector, 3);
    out.write(reinterpret_cast<char const *>(vector.data()), 3);
    stream::vector_input in(vector);
    EXPECT_EQ(in.copy_to(out), 6u);
    EXPECT_EQ(text(vector), "abcabcabcabc");
    stream::vector_output overlapping(vector, 1);
    overlapping.write(reinterpret_cast<char const *>(vector.data()), 4);
    EXPECT_EQ(text(vector), "aabcacabcabc");

    // Whatever lies between, also where it cuts the block, or writes something else first.
    struct in_pieces : stream::filter_output {
        using filter_output::filter_output;
        using filter_output::write;
        void write(char const * data, uint32 count) override { output::write(data, count); }
    };
    auto const expect_copy = [](std::string const & copy, auto make) {
        for (bool const whole : {true, false}) {
            byte_vector memory = bytes("a\nb\n");
            memory.shrink_to_fit();
            stream::vector_output bottom(memory, 4);
            auto target = make(bottom);
            stream::vector_input source(memory);
            if (whole)
                source.copy_to(*target);
            else
                stream::copier(2).process(source, *target, 4);
            target->flush();
            EXPECT_EQ(text(memory), "a\nb\n" + copy);
        }
    };
    expect_copy("a\nb\n", [](auto & to) { return std::make_unique<stream::filter_output>(to); });
    expect_copy("a\r\nb\r\n", [](auto & to) { return std::make_unique<stream::text_output>(to, 3); });
    expect_copy("a\nb\n", [](auto & to) { return std::make_unique<in_pieces>(to); });
    expect_copy("...a\nb\n", [](auto & to) {
        auto buffered = std::make_unique<stream::buffered_output>(to, 4);
        buffered->write("...", 3);
        return buffered;
    });
}

TEST(vector_output, refuses_what_no_vector_can_be) {
    byte_vector vector(8, 'x');
    stream::vector_output out(vector, 4);
    EXPECT_THROW(out.resize(uint64(1) << 63), std::length_error);
    if constexpr (sizeof(std::size_t) == 4)
        EXPECT_THROW(stream::vector_output(vector, UINT32_MAX).write("ab", 2), std::length_error);
    EXPECT_EQ(vector.size(), 8u);
    vector.resize(1);
    out.write("9", 1);
    EXPECT_EQ(text(vector), "x\0\0\0009"s);
}

TEST(memory_output, copies_no_source_that_is_too_large) {
    byte_vector vector(9);
    stream::vector_output grows(vector, 2);
    char memory[6];
    stream::array_output fixed(memory, 6);
    for (uint64 const size : {uint64(0xFFFFFFFF) - 8, uint64(5) << 30, all_ones}) {
        support::huge_source source(size);
        EXPECT_EQ(raised([&] { grows.copy_from(source); }),
                  "stream::vector_output: input stream is too large to copy into the vector");
        EXPECT_EQ(raised([&] { fixed.copy_from(source); }),
                  "stream::array_output: input stream is too large to copy into the array");
    }
    EXPECT_EQ(vector.size(), 9u);
}

} // namespace
