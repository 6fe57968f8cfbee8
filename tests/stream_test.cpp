#include "socle/basic/buffer.h"
#include "socle/nio/channel.h"
#include "socle/stream/direct_input.h"
#include "socle/stream/vector_input.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

// What all byte streams share, and chains do not show.

namespace {

using support::failure;
using support::fragment_source;
using support::raised;
using support::rest;

TEST(input, skips_beyond_thirty_two_bits) {
    support::huge_source huge;
    stream::direct_input in(huge);
    EXPECT_EQ(in.skip(uint64(9) << 30), uint64(5) << 30);
    EXPECT_EQ(in.tell(), uint64(5) << 30);
}

TEST(input, unread_passes_on_what_a_callers_seek_throws) {
    struct : fragment_source {
        using fragment_source::fragment_source;
        bool seek(uint64) override { throw failure(); }
        uint64 _tell() const override {
            if (!has_position)
                throw stream::exception("no", "test");
            return fragment_source::_tell();
        }
        bool has_position = true;
    } in({"abcdef"});
    in.read();
    EXPECT_THROW(in.unread('a'), failure);
    EXPECT_EQ(in.tell(), 1u);
    EXPECT_EQ(in.read(), 'b');
    in.has_position = false;
    EXPECT_THROW(in.unread("ZZ", 2), stream::exception);
    EXPECT_EQ(in.read(), 'c');
}

TEST(input, copies_have_their_own_bytes_given_back) {
    byte_vector const data = support::bytes("abc");
    stream::vector_input in(data);
    in.read();
    in.unread("xy", 2);
    stream::vector_input copy(in);
    EXPECT_EQ(rest(in), "xybc");
    EXPECT_EQ(copy.tell(), all_ones);
    EXPECT_EQ(rest(copy), "xybc");
}

/// The least that a caller's sink can be.
struct sequential : stream::output {
    using stream::output::write;
    void write(char byte) override { data += byte; }
    uint64 tell() const override { return data.size(); }
    void flush() override { ++flushes; }
    std::string data;
    int flushes = 0;
};

TEST(output, defaults_stand_on_single_bytes) {
    sequential out;
    out.mark();
    out.write("abc", 2);
    out.write(narrow_string("cd"));
    out.write(static_cast<unsigned char>('e'));
    out.write(nullptr, 5);
    static_cast<stream::output &>(out).write(narrow_string());
    fragment_source in({"fg", "", "h"});
    out.copy_from(in);
    out.fill(2, '!');
    EXPECT_EQ(out.data, "abcdefgh!!");
    EXPECT_EQ(out.size(), 10u);
    EXPECT_EQ(out.drift(), 10u);
    out.resize(12);
    out.resize(12);
    EXPECT_EQ(out.data, std::string("abcdefgh!!\0\0", 12));
    EXPECT_EQ(raised([&] { out.resize(11); }), "stream::output: resize() does not truncate the stream");
    EXPECT_EQ(raised([&] { out.seek(0); }), "stream::output: cannot seek in a sequential stream");
    out.flush_through();
    out.close();
    EXPECT_EQ(out.flushes, 2);
}

TEST(wide_roots, do_little_by_default) {
    struct source : nio::input {
        using nio::input::read;
        uint32 read(char * buffer, uint32 size) override {
            std::fill_n(buffer, size, 'x');
            position(position() + size);
            return size;
        }
    } in;
    struct target : nio::output {
        using nio::output::write;
        void write(char const *, uint32 size) override { position(position() + size); }
    } out;
    struct both : nio::channel {
        uint32 read(char *, uint32 size) override { return move(size); }
        void write(char const *, uint32 size) override { move(size); }
        uint32 move(uint32 size) { return position(position() + size), size; }
    } channel;
    unsigned char block[3] = {};
    EXPECT_EQ(in.read(block), 3u);
    EXPECT_EQ(block[2], 'x');
    out.write(block);
    EXPECT_EQ(static_cast<nio::input &>(channel).read(std::span(block, 1)), 1u);
    static_cast<nio::output &>(channel).write(std::span<unsigned char const>(block, 2));
    auto const expect_defaults = [](auto & stream, uint64 size) {
        stream.begin();
        stream.end();
        EXPECT_FALSE(stream.seek(0));
        EXPECT_EQ(stream.tell(), 3u);
        EXPECT_EQ(stream.size(), size);
    };
    expect_defaults(in, all_ones);
    expect_defaults(out, 3); // what was written
    expect_defaults(channel, all_ones);
}

TEST(buffer, knows_whether_it_may_be_resized) {
    basic::buffer<uint16> own(3);
    for (uint32 i = 0; i < 3; ++i)
        own[i] = static_cast<uint16>(i + 1);
    own.resize(5);
    own.resize(2);
    EXPECT_TRUE(own.owner());
    EXPECT_EQ(own.size(), 2u);
    EXPECT_EQ(own[1], 2);
    char storage[4] = {'a', 'b', 'c', 'd'};
    basic::buffer<char> fixed(storage, 4);
    EXPECT_EQ(fixed.data(), storage);
    basic::buffer<char> copy(fixed);
    copy[0] = 'x';
    EXPECT_EQ(storage[0], 'a');
    copy.resize(0);
    EXPECT_EQ(copy.data(), nullptr);
    copy.resize(1);
    try {
        fixed.resize(4);
        ADD_FAILURE();
    } catch (std::logic_error const & e) {
        EXPECT_STREQ(e.what(), "cannot resize a static buffer");
    }
    basic::buffer<char> none(0);
    copy = none;
    none.resize(2);
    EXPECT_EQ(none.size(), 2u);
    copy = fixed;
    EXPECT_TRUE(copy.owner());
    EXPECT_EQ(std::string(copy.data(), copy.size()), "abcd");
}

// The place of a virtual operation in the table, as the plug-ins' compilers see it.
template <class Operation>
std::size_t place(Operation operation) {
    std::size_t words[2];
    static_assert(sizeof operation == sizeof words);
    std::memcpy(words, &operation, sizeof words);
    return words[0] - 1;
}

std::vector<std::size_t> list(auto... places) { return {places...}; }

struct input_order : stream::input {
    using in = stream::input;
    static std::vector<std::size_t> places() {
        return list(place(&in::begin), place(&in::end), place<uint32 (in::*)(char *, uint32)>(&in::read),
                    place(&in::tell), place(&in::seek), place(&in::size), place<int (in::*)()>(&in::read),
                    place<void (in::*)(char const *, uint32)>(&in::unread), place<void (in::*)(char)>(&in::unread),
                    place(&in::skip), place(&in::copy_to), place(&in::close),
                    place<uint32 (input_order::*)(char *, uint32)>(&input_order::_read),
                    place<int (input_order::*)()>(&input_order::_read), place(&input_order::_skip),
                    place(&input_order::_copy_to), place(&input_order::_tell));
    }
};

struct output_order {
    using out = stream::output;
    static std::vector<std::size_t> places() {
        return list(place(&out::begin), place(&out::end), place<void (out::*)(char const *, uint32)>(&out::write),
                    place<void (out::*)(unsigned char)>(&out::write), place(&out::flush), place(&out::tell),
                    place(&out::seek), place(&out::size), place<void (out::*)(narrow_string const &)>(&out::write),
                    place<void (out::*)(char)>(&out::write), place(&out::copy_from), place(&out::resize),
                    place(&out::flush_through), place(&out::close));
    }
};

TEST(contract, virtual_operations_come_in_order) {
    for (auto const & places : {input_order::places(), output_order::places()}) {
        EXPECT_EQ(places[0], 2 * sizeof(void *)); // behind the two destructors
        EXPECT_EQ(std::adjacent_find(places.begin(), places.end(), std::greater_equal<>()), places.end());
    }
}

} // namespace
