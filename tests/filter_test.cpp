#include "stream/array_output.h"
#include "stream/direct_input.h"
#include "stream/endian_input.h"
#include "stream/endian_output.h"
#include "stream/vector_input.h"
#include "stream/vector_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::fragment_source;
using support::recording_target;
using support::rest;
using support::text;

TEST(FilterInput, KeepsWhatIsGivenBackAndDirectHandsItDown) {
    fragment_source source({"abcdef"});
    stream::filter_input filter(source);
    stream::direct_input lower(source), direct;
    direct.under(lower); // direct_input(lower) would be a copy
    EXPECT_EQ(filter.read(), 'a');
    filter.unread('x');
    EXPECT_EQ(filter.tell(), 0u);
    EXPECT_EQ(source.tell(), 1u);
    EXPECT_EQ(direct.read(), 'b');
    direct.unread("YZ", 2);
    EXPECT_EQ(direct.tell(), 0u);
    EXPECT_EQ(lower.tell(), 0u);
    EXPECT_EQ(source.tell(), 0u);
    EXPECT_EQ(rest(filter), "xYZcdef");
    EXPECT_THROW(filter.seek(0), stream::exception);
    EXPECT_EQ(direct.size(), 6u);
}

TEST(Filter, WithoutAStreamReadsAsEndedAndRaisesOnWriting) {
    stream::direct_input in;
    char block[4];
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.read(block, 4), 0u);
    EXPECT_EQ(in.skip(4), 0u);
    EXPECT_EQ(in.tell() + in.size(), 0u);
    in.close();
    EXPECT_THROW(in.unread('x'), stream::exception);
    stream::filter_output out;
    EXPECT_THROW(out.write('x'), stream::exception);
    EXPECT_THROW(out.resize(0), stream::exception);
    EXPECT_THROW(out.under(), stream::exception);
    EXPECT_EQ(out.tell(), 0u);
    out.flush_through();
    out.close();
    recording_target target;
    out.under(target);
    out.write('x');
    EXPECT_EQ(target.data, "x");
}

/// Notes on a common page which operation came.
struct noting : stream::filter_output {
    noting(stream::output & beneath, std::string & p, char n) : filter_output(beneath), page(p), name(n) {}
    void flush() override { page += name; }
    void close() override {
        page += '(';
        filter_output::close();
        page += ')';
    }
    std::string & page;
    char name;
};

TEST(FilterOutput, FlushesThroughFromTheTop) {
    recording_target bottom;
    std::string page;
    noting c(bottom, page, 'c'), b(c, page, 'b'), a(b, page, 'a');
    a.flush_through();
    EXPECT_EQ(page, "abc");
    EXPECT_EQ(bottom.flushes, 1);
    page.clear();
    a.close();
    EXPECT_EQ(page, "(a(b(c)))");
    page.clear();
    a.write(narrow_string("text"));
    a.write("block", 5);
    a.write(static_cast<unsigned char>('!'));
    fragment_source in({"in"});
    a.copy_from(in);
    a.resize(13);
    EXPECT_EQ(bottom.data, std::string("textblock!in\0", 13));
    EXPECT_EQ(a.size(), 13u);
    EXPECT_EQ(page, "");
}

// One stream part per object: two levels of filters, each a class of its own, copied and assigned as a whole.
struct one : virtual stream::filter_input {
    explicit one(stream::input & s) : filter_input(s) {}
};
struct two : one {
    explicit two(stream::input & s) : filter_input(s), one(s) {}
};

TEST(Filter, CopiesAndAssignsTheSharedPartOnce) {
    fragment_source first({"abc"}), second({"uvw"});
    stream::big_endian_input reader(first);
    stream::endian_input & as_endian = reader;
    EXPECT_EQ(static_cast<stream::input *>(&reader),
              static_cast<stream::input *>(static_cast<stream::direct_input *>(&reader)));
    EXPECT_EQ(as_endian.read8(), 'a');

    two x(first), y(second);
    static_assert(std::is_convertible_v<two *, stream::input *>); // ambiguous if there were two parts
    x.unread("12", 2);
    x.mark();
    two z(x);
    y = x;
    EXPECT_EQ(rest(y), "12bc");
    EXPECT_EQ(y.drift(), 4u);
    EXPECT_EQ(rest(x), "12");
    EXPECT_EQ(rest(z), "12");
    EXPECT_EQ(rest(second), "uvw");

    byte_vector data;
    stream::vector_output out(data);
    stream::filter_output f(out), g;
    g = f;
    g.mark();
    g.write("ab", 2);
    stream::filter_output h(g);
    h.write("c", 1);
    EXPECT_EQ(h.drift(), 3u);
    EXPECT_EQ(text(data), "abc");
}

char const eight[] = "\x12\x34\x56\x78\x9A\xBC\xDE\xF0";

/// The source in a form that lends its bytes, and in two that do not.
template <class Act>
void over_each(std::string const & data, Act act) {
    byte_vector const vector = bytes(data);
    {
        SCOPED_TRACE("lent");
        stream::vector_input source(vector);
        act(source);
    }
    {
        SCOPED_TRACE("a caller's class");
        fragment_source source({data});
        act(source);
    }
    SCOPED_TRACE("given back");
    byte_vector const none;
    stream::vector_input source(none);
    source.unread(data.data(), static_cast<uint32>(data.size()));
    act(source);
}

TEST(Endian, ReadsEachWidth) {
    struct {
        uint16 v16;
        uint32 v24, v32;
        uint64 v64;
    } const big{0x1234, 0x123456, 0x12345678, 0x123456789ABCDEF0},
        little{0x3412, 0x563412, 0x78563412, 0xF0DEBC9A78563412};
    auto const check = [](auto & in, auto const & values) {
        uint64 const start = in.tell();
        EXPECT_EQ(in.read16(), values.v16);
        in.unread(eight, 2);
        EXPECT_EQ(in.read24(), values.v24);
        in.unread(eight, 3);
        EXPECT_EQ(in.read32(), values.v32);
        in.unread(eight, 4);
        EXPECT_EQ(in.read64(), values.v64);
        EXPECT_EQ(in.tell(), start + 8);
        in.unread('\x99');
        EXPECT_EQ(in.tell(), in.under().tell());
        EXPECT_EQ(in.read8(), 0x99);
        EXPECT_EQ(in.read8(), 0xFF);
    };
    over_each(std::string(eight, 8), [&](stream::input & source) {
        stream::big_endian_input in(source);
        check(in, big);
    });
    over_each(std::string(eight, 8), [&](stream::input & source) {
        stream::little_endian_input in(source);
        check(in, little);
    });
}

TEST(Endian, MeetsTheEndInsideAValue) {
    over_each("\x12", [](stream::input & source) {
        stream::big_endian_input in(source);
        EXPECT_EQ(in.read16(), 0xFFFF);
        EXPECT_EQ(in.tell(), source.tell());
    });
    over_each("\x12\x34",
              [](stream::input & source) { EXPECT_EQ(stream::big_endian_input(source).read24(), 0xFFFFFFFF); });
    over_each("\x12\x34\x56",
              [](stream::input & source) { EXPECT_EQ(stream::big_endian_input(source).read32(), 0xFFFFFFFF); });
    over_each(std::string(eight, 5),
              [](stream::input & source) { EXPECT_EQ(stream::big_endian_input(source).read64(), 0x12345678FFFFFFFF); });
    over_each("\x12\x34",
              [](stream::input & source) { EXPECT_EQ(stream::little_endian_input(source).read24(), 0x00FF3412u); });
    over_each(std::string(eight, 5), [](stream::input & source) {
        EXPECT_EQ(stream::little_endian_input(source).read64(), 0xFFFFFF9A78563412);
    });
}

TEST(Endian, ACallersSourceIsAskedAsPromised) {
    fragment_source blocks({std::string(eight, 8)}), singles({std::string(eight, 8)});
    stream::little_endian_input(blocks).read32();
    EXPECT_EQ(blocks.asked, (std::vector<uint32>{4}));
    stream::big_endian_input(singles).read32();
    EXPECT_EQ(singles.asked, (std::vector<uint32>{0, 0, 0, 0}));

    recording_target block_target, single_target;
    stream::little_endian_output(block_target).write32(1);
    EXPECT_EQ(block_target.writes, (std::vector<uint32>{4}));
    stream::big_endian_output(single_target).write32(1);
    EXPECT_EQ(single_target.writes, (std::vector<uint32>{0, 0, 0, 0}));

    // A class of the caller's above a stream of ours is asked too.
    struct watching : stream::big_endian_input {
        using stream::big_endian_input::big_endian_input;
        int _read() override {
            ++singles;
            return big_endian_input::_read();
        }
        int singles = 0;
    };
    byte_vector const data = bytes(eight);
    stream::vector_input memory(data);
    watching in(memory);
    EXPECT_EQ(in.read32(), 0x12345678u);
    EXPECT_EQ(in.singles, 4);
}

template <class Output>
void write_each(Output & out) {
    out.write8(0xAB);
    out.write16(0x1234);
    out.write24(0xFF123456);
    out.write32(0x12345678);
    out.write64(0x123456789ABCDEF0);
}

TEST(Endian, WritesEachWidth) {
    std::string const big = "\xAB\x12\x34\x12\x34\x56\x12\x34\x56\x78\x12\x34\x56\x78\x9A\xBC\xDE\xF0";
    std::string const little = "\xAB\x34\x12\x56\x34\x12\x78\x56\x34\x12\xF0\xDE\xBC\x9A\x78\x56\x34\x12";
    for (bool const is_big : {true, false}) {
        std::string array(18, '.');
        stream::array_output to_array(array.data(), 18);
        byte_vector grown, present(18);
        stream::vector_output to_grown(grown), to_present(present);
        recording_target to_caller;
        for (stream::output * to :
             {static_cast<stream::output *>(&to_array), static_cast<stream::output *>(&to_grown),
              static_cast<stream::output *>(&to_present), static_cast<stream::output *>(&to_caller)}) {
            stream::big_endian_output big_out(*to);
            stream::little_endian_output little_out(*to);
            if (is_big)
                write_each(big_out);
            else
                write_each(little_out);
            EXPECT_EQ(to->tell(), 18u);
        }
        auto const & expected = is_big ? big : little;
        EXPECT_EQ(array, expected);
        EXPECT_EQ(text(grown), expected);
        EXPECT_EQ(text(present), expected);
        EXPECT_EQ(to_caller.data, expected);
    }
    // A value that does not fit goes as far as single bytes go.
    char three[3] = {};
    stream::array_output small(three, 3);
    stream::big_endian_output out(small);
    EXPECT_THROW(out.write32(0x61626364), stream::exception);
    EXPECT_EQ(std::string(three, 3), "abc");
}

} // namespace
