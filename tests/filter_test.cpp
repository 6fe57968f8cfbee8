#include "socle/stream/array_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/counted_output.h"
#include "socle/stream/direct_input.h"
#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/infinite_input.h"
#include "socle/stream/infinite_output.h"
#include "socle/stream/integers.h"
#include "socle/stream/line_input.h"
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

template <class Filter>
auto beneath(auto & stream) {
    return &Filter(stream).under();
}

TEST(filter, stands_on_a_filter_of_another_class_and_copies_its_own) {
    fragment_source source({"abcdef"});
    stream::buffered_input ahead(source, 4);
    stream::direct_input direct(ahead);
    struct inheriting : stream::big_endian_input {
        using big_endian_input::big_endian_input;
    } reader(direct);
    stream::line_input lines(source);
    for (auto const & [found, expected] : std::initializer_list<std::pair<stream::input *, stream::input *>>{
             {beneath<stream::filter_input>(ahead), &ahead},
             {beneath<stream::filter_input>(direct), &direct},
             {beneath<stream::direct_input>(ahead), &ahead},
             {beneath<stream::direct_input>(reader), &reader},
             {beneath<stream::direct_input>(lines), &lines},
             {beneath<stream::big_endian_input>(reader), &reader},
             {beneath<stream::little_endian_input>(reader), &reader},
             {beneath<stream::safe_input>(reader), &reader},
             {beneath<stream::direct_input>(direct), &ahead}, // a copy, like the rest
             {beneath<inheriting>(reader), &direct},
             {beneath<stream::line_input>(lines), &source},
             {beneath<stream::filter_input>(std::as_const(ahead)), &source},
         })
        EXPECT_EQ(found, expected);
    EXPECT_EQ(ahead.read(), 'a');
    EXPECT_EQ(rest(reader), "bcdef");

    recording_target target;
    stream::buffered_output low(target, 8);
    struct handing_down : stream::filter_output {
        explicit handing_down(stream::buffered_output & stream) : filter_output(stream) {}
        handing_down(handing_down const & other) : output(other), filter_output(other) {}
    } mid(low);
    stream::big_endian_output numbers(mid);
    EXPECT_EQ(&mid.under(), &low);
    EXPECT_EQ(&numbers.under(), &mid);
    EXPECT_EQ(beneath<handing_down>(mid), &low);
    EXPECT_EQ(beneath<stream::filter_output>(numbers), &numbers);
    EXPECT_EQ(beneath<stream::big_endian_output>(numbers), &mid);
    low.write('a');
    numbers.write16(0x6263);
    low.flush();
    EXPECT_EQ(target.data, "abc");
}

TEST(filter, without_a_stream_reads_as_ended_and_raises_on_writing) {
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

TEST(filter_output, flushes_through_from_the_top) {
    recording_target bottom;
    std::string page;
    noting c(bottom, page, 'c'), b(c, page, 'b'), a(b, page, 'a');
    a.flush_through();
    EXPECT_EQ(page, "abc");
    EXPECT_EQ(bottom.flushes, 1);
    page.clear();
    a.close();
    EXPECT_EQ(page, "(a(b(c)))");
}

// One stream part per object: two levels of filters, each a class of its own, copied and assigned as a whole.
struct one : virtual stream::filter_input {
    explicit one(stream::input & s) : filter_input(s) {}
};
struct two : one {
    explicit two(stream::input & s) : filter_input(s), one(s) {}
};

TEST(filter, copies_and_assigns_the_shared_part_once) {
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

TEST(endian, asks_a_callers_class_above_memory_for_each_byte) {
    using reader = support::in_bytes<stream::big_endian_input, stream::little_endian_input>;
    struct watching : reader {
        using reader::reader;
        explicit watching(reader const & other) : reader(other) {}
        int _read() override {
            ++singles;
            return reader::_read();
        }
        int singles = 0;
    };
    byte_vector const data = bytes("12345678");
    stream::vector_input memory(data);
    watching in(memory);
    EXPECT_EQ(in.read32(), support::big_machine ? 0x34333231u : 0x31323334u);
    EXPECT_EQ(in.singles, 4);

    // What a reader has found out about itself does not hold for one that begins as its copy.
    reader plain(memory);
    plain.read16();
    watching copy(plain);
    copy.read16();
    EXPECT_EQ(copy.singles, 2);
}

TEST(endian, runs_are_what_single_calls_are_where_each_value_changes_a_later_one) {
    auto const data = support::pattern(200);
    auto const written = [&](uint32 shift, bool runs) {
        std::vector<uint32> values(50);
        std::memcpy(values.data(), data.data(), 200);
        stream::array_output memory(reinterpret_cast<char *>(values.data()), 150, shift);
        stream::big_endian_output out(memory);
        EXPECT_THROW(
            {
                if (runs)
                    stream::write_integers(out, values);
                for (auto const value : values)
                    out.write32(value);
            },
            stream::exception);
        return values;
    };
    for (uint32 const shift : {0u, 3u})
        EXPECT_EQ(written(shift, true), written(shift, false)) << shift;

    struct callers_input : stream::big_endian_input {
        using big_endian_input::big_endian_input;
        uint64 read64() override { return big_endian_input::read64() + 1; }
    };
    stream::vector_input memory(data);
    callers_input in(memory);
    uint64 values[2];
    stream::read_integers(in, values);
    stream::vector_input again(data);
    EXPECT_EQ(values[0], stream::big_endian_input(again).read64() + 1);
}

TEST(counted_output, counts_what_it_fills) {
    byte_vector data;
    stream::vector_output target(data);
    stream::counted_output out(target, 7);
    out.fill(2, '!');
    EXPECT_EQ(out.count(), 9u);
    EXPECT_EQ(text(data), "!!");
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
