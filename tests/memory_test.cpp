#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/copier.h"
#include "socle/stream/infinite_output.h"
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
using support::pattern;
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

TEST(memory_input, is_copied_in_whole_blocks) {
    byte_vector data = pattern(200'000);
    un::array<char> const memory(reinterpret_cast<char *>(data.data()), 200'000);
    byte_vector target(data.size());
    stream::array_output into_array(reinterpret_cast<char *>(target.data()), 200'000);
    stream::infinite_output nowhere;
    for (stream::output * out : {static_cast<stream::output *>(&into_array), static_cast<stream::output *>(&nowhere)}) {
        stream::array_input in(memory, 1);
        stream::input & copied = in;
        EXPECT_EQ(copied.copy_to(*out), 199'999u);
        EXPECT_EQ(out->tell(), 199'999u);
        EXPECT_EQ(in.read(), -1);
    }
    EXPECT_TRUE(std::equal(data.begin() + 1, data.end(), target.begin()));
}

TEST(memory_input, starts_anywhere_and_ends_with_the_block) {
    char const data[] = "abcdef";
    byte_vector const vector = bytes("abcdef");
    struct {
        uint32 start;
        char const * rest;
    } const table[] = {{0, "abcdef"}, {5, "f"}, {6, ""}, {9, ""}, {0xFFFFFFFF, ""}};
    for (auto const & c : table) {
        stream::array_input array(data, 6, c.start);
        stream::vector_input over_vector(vector, c.start);
        for (stream::input * in : {static_cast<stream::input *>(&array), static_cast<stream::input *>(&over_vector)}) {
            EXPECT_EQ(in->tell(), c.start);
            EXPECT_EQ(in->size(), 6u);
            EXPECT_EQ(rest(*in), c.rest);
            EXPECT_EQ(in->read(), -1);
            EXPECT_EQ(in->skip(10), 0u);
            EXPECT_EQ(in->tell(), std::max(c.start, 6u));
        }
    }
}

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

TEST(memory_input, skips_no_more_than_thirty_two_bits) {
    byte_vector const vector(5);
    stream::array_input array(nullptr, 0);
    stream::vector_input in(vector, 2);
    EXPECT_EQ(raised([&] { array.skip(too_much); }),
              "stream::array_input: cannot skip more than the maximum array size");
    EXPECT_EQ(raised([&] { in.skip(too_much); }),
              "stream::vector_input: cannot skip more than the maximum vector size");
    EXPECT_EQ(array.skip(too_much - 1), 0u);
    EXPECT_EQ(in.skip(too_much - 1), 3u);
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

TEST(memory_input, copy_to_leaves_a_vector_but_empties_an_array) {
    byte_vector const vector = bytes("abc");
    stream::vector_input in(vector, 1);
    stream::array_input array("abc", 3, 1);
    recording_target out;
    EXPECT_EQ(in.copy_to(out), 2u);
    EXPECT_EQ(in.copy_to(out), 2u);
    EXPECT_EQ(array.copy_to(out), 2u);
    EXPECT_EQ(array.copy_to(out), 0u);
    EXPECT_EQ(out.data, "bcbcbc");
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

TEST(array_output, stores_what_fits) {
    std::string memory(6, '.');
    stream::array_output out(memory.data(), 6, 2);
    std::string const full = "stream::array_output: cannot write past the end of a fixed-size buffer";
    out.write("", 0);
    EXPECT_EQ(raised([&] { out.write("0123456789", 10); }), full);
    EXPECT_EQ(memory, "..0123");
    EXPECT_EQ(out.tell(), 6u);
    EXPECT_EQ(raised([&] { out.write('x'); }), full);
    out.resize(6);
    for (uint64 const size : {0u, 5u, 7u})
        EXPECT_EQ(raised([&] { out.resize(size); }), "stream::array_output: cannot resize its buffer");
    stream::array_output beyond(memory.data(), 6, 8);
    EXPECT_EQ(raised([&] { beyond.write('x'); }), full);
    EXPECT_EQ(raised([&] { beyond.write("x", 1); }), full);
    // A block from its own memory goes byte by byte.
    un::array<char> whole(memory.data(), 6);
    stream::array_output own(whole, 3);
    own.write(memory.data() + 2, 3);
    EXPECT_EQ(memory, "..0000");
}

TEST(array_output, copies_a_source_that_fits) {
    std::string memory(6, '.');
    stream::array_output out(memory.data(), 6, 2);
    std::string const too_large = "stream::array_output: input stream is too large to copy into the array";
    byte_vector const data = bytes("abcde");
    stream::vector_input five(data), four(data, 1);
    EXPECT_EQ(raised([&] { out.copy_from(five); }), too_large);
    byte_vector const short_data = bytes("wxyz");
    stream::vector_input read_on(short_data, 1);
    out.copy_from(read_on); // asks for the length of the whole source, gets what is left
    EXPECT_EQ(memory, "..xyz.");
    EXPECT_EQ(out.tell(), 5u);
    support::huge_source huge;
    EXPECT_EQ(raised([&] { out.copy_from(huge); }), too_large);
    struct endless : support::huge_source {
        uint64 size() const override { return all_ones; }
    } source;
    EXPECT_EQ(raised([&] { out.copy_from(source); }), too_large);
}

TEST(vector_output, overwrites_then_grows) {
    struct {
        std::string initial;
        uint32 start;
        std::vector<std::string> writes;
        std::string result;
    } const table[] = {
        {"abcde", 0, {"0", "12", "", "34567", "8"}, "012345678"},
        {"ab", 4, {"xy", "z"}, "ab\0\0xyz"s},
    };
    for (auto const & c : table) {
        byte_vector vector = bytes(c.initial);
        stream::vector_output out(vector, c.start);
        for (auto const & piece : c.writes)
            if (piece.size() == 1)
                out.write(piece[0]);
            else
                out.write(piece.data(), static_cast<uint32>(piece.size()));
        EXPECT_EQ(text(vector), c.result);
        EXPECT_EQ(out.size(), c.result.size());
        // The same once more, where the vector has become shorter.
        vector.resize(1);
        out.write("9", 1);
        EXPECT_EQ(text(vector), c.result.substr(0, 1) + std::string(c.result.size() - 1, '\0') + "9");
    }
}

TEST(vector_output, copy_grows_from_the_end) {
    byte_vector vector = bytes("abcdef");
    stream::vector_output out(vector, 2);
    byte_vector const data = bytes("123");
    stream::vector_input in(data);
    out.copy_from(in);
    EXPECT_EQ(text(vector), "ab123f\0\0\0"s);
    EXPECT_EQ(out.tell(), 5u);
    std::string const too_large = "stream::vector_output: input stream is too large to copy into the vector";
    support::huge_source just_too_much(0xFFFFFFFF - 8), huge;
    EXPECT_EQ(raised([&] { out.copy_from(just_too_much); }), too_large);
    EXPECT_EQ(raised([&] { out.copy_from(huge); }), too_large);
    EXPECT_EQ(vector.size(), 9u);
    stream::vector_output beyond(vector, 11);
    stream::vector_input again(data);
    beyond.copy_from(again);
    EXPECT_EQ(text(vector), "ab123f\0\0\0\0\0"s + "123");
}

TEST(vector_output, appends_a_single_byte_past_the_end) {
    byte_vector vector = bytes("ab");
    stream::vector_output out(vector, 9);
    out.write('z');
    EXPECT_EQ(text(vector), "abz");
    EXPECT_EQ(out.tell(), 10u);
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

TEST(vector_output, resizes_the_vector_but_not_below_the_position) {
    byte_vector vector(10, 'x');
    stream::vector_output out(vector, 4);
    EXPECT_EQ(raised([&] { out.resize(3); }), "stream::vector_output: I do not truncate the stream");
    out.resize(4);
    EXPECT_EQ(vector.size(), 10u);
    out.resize(6);
    EXPECT_EQ(vector.size(), 6u);
    out.resize(8);
    EXPECT_EQ(text(vector), "xxxxxx\0\0"s);
    EXPECT_EQ(out.tell(), 4u);
    EXPECT_THROW(out.resize(uint64(1) << 63), std::length_error);
    if constexpr (sizeof(std::size_t) == 4)
        EXPECT_THROW(stream::vector_output(vector, UINT32_MAX).write("ab", 2), std::length_error);
    EXPECT_EQ(vector.size(), 8u);
}

} // namespace
