#include "socle/stream/array_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/counted_input.h"
#include "socle/stream/counted_output.h"
#include "socle/stream/direct_input.h"
#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/infinite_input.h"
#include "socle/stream/infinite_output.h"
#include "socle/stream/integers.h"
#include "socle/stream/limited_input.h"
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

char const eight[] = "\x12\x34\x56\x78\x9A\xBC\xDE\xF0";

TEST(endian, a_callers_source_is_asked_as_promised) {
    fragment_source blocks({std::string(eight, 8)}), singles({std::string(eight, 8)});
    using input_in_bytes = support::in_bytes<stream::big_endian_input, stream::little_endian_input>;
    support::in_blocks<stream::big_endian_input, stream::little_endian_input>(blocks).read32();
    EXPECT_EQ(blocks.asked, (std::vector<uint32>{4}));
    input_in_bytes(singles).read32();
    EXPECT_EQ(singles.asked, (std::vector<uint32>{0, 0, 0, 0}));

    recording_target block_target, single_target;
    support::in_blocks<stream::big_endian_output, stream::little_endian_output>(block_target).write32(1);
    EXPECT_EQ(block_target.writes, (std::vector<uint32>{4}));
    support::in_bytes<stream::big_endian_output, stream::little_endian_output>(single_target).write32(1);
    EXPECT_EQ(single_target.writes, (std::vector<uint32>{0, 0, 0, 0}));

    // A class of the caller's above a stream of ours is asked too.
    struct watching : input_in_bytes {
        using input_in_bytes::input_in_bytes;
        explicit watching(input_in_bytes const & other) : input_in_bytes(other) {}
        int _read() override {
            ++singles;
            return input_in_bytes::_read();
        }
        int singles = 0;
    };
    byte_vector const data = bytes(eight);
    stream::vector_input memory(data);
    watching in(memory);
    EXPECT_EQ(in.read32(), support::big_machine ? 0x78563412u : 0x12345678u);
    EXPECT_EQ(in.singles, 4);

    // What a reader has found out about itself does not hold for one that begins as its copy.
    input_in_bytes plain(memory);
    plain.read16();
    watching copy(plain);
    copy.read16();
    EXPECT_EQ(copy.singles, 2);
}

TEST(endian, a_value_that_does_not_fit_goes_as_far_as_single_bytes_go) {
    std::string memory(7, '.');
    stream::array_output small(memory.data(), 3), open(memory.data() + 3, 3);
    EXPECT_THROW(stream::big_endian_output(small).write32(0x61626364), stream::exception);
    open.write('x'); // from then on its memory is open
    EXPECT_THROW(stream::big_endian_output(open).write24(0x646566), stream::exception);
    EXPECT_EQ(memory, "abcxde.");
}

/// Both classes of each side, one value at a time or in runs.
template <class In, class Out>
void expect_runs_like_single_calls() {
    std::string const data = text(support::pattern(299));
    byte_vector const held = bytes(data);
    auto const read = [&](bool lent, bool runs) {
        stream::vector_input memory(held);
        fragment_source from({data.substr(0, 150), data.substr(150)});
        In in(lent ? static_cast<stream::input &>(memory) : from);
        std::vector<uint64> all(40); // beyond the end
        if (runs)
            stream::read_integers(in, all);
        else
            std::generate(all.begin(), all.end(), [&] { return in.read64(); });
        return std::tuple(all, in.tell(), from.asked);
    };
    for (bool const lent : {true, false})
        EXPECT_EQ(read(lent, true), read(lent, false));

    auto const write = [&](stream::output & to, std::span<uint32 const> values, bool runs) {
        Out out(to);
        try {
            if (runs)
                stream::write_integers(out, values);
            else
                for (auto const value : values)
                    out.write32(value);
        } catch (stream::exception const &) {
            return std::pair(true, out.tell());
        }
        return std::pair(false, out.tell());
    };
    // Into memory that is too small, which in two cases is that of the values themselves, where each changes a later
    // one.
    for (auto const & [shift, aliased] : {std::pair(0, false), std::pair(0, true), std::pair(3, true)}) {
        std::vector<uint32> one(50);
        std::memcpy(one.data(), data.data(), 200);
        auto other = one;
        auto const values = one;
        stream::array_output to_one(reinterpret_cast<char *>(one.data()) + shift, 150);
        stream::array_output to_other(reinterpret_cast<char *>(other.data()) + shift, 150);
        EXPECT_EQ(write(to_one, aliased ? one : values, true), write(to_other, aliased ? other : values, false));
        EXPECT_EQ(one, other);
    }
    std::vector<uint32> const values = {1, 2, 3};
    recording_target single_target, run_target;
    EXPECT_EQ(write(run_target, values, true), write(single_target, values, false));
    EXPECT_EQ(run_target.writes, single_target.writes);
    EXPECT_EQ(run_target.data, single_target.data);
}

TEST(endian, runs_are_what_single_calls_are) {
    expect_runs_like_single_calls<stream::big_endian_input, stream::big_endian_output>();
    struct callers_input : stream::big_endian_input {
        using big_endian_input::big_endian_input;
        uint64 read64() override { return big_endian_input::read64() + 1; }
    };
    struct callers_output : stream::big_endian_output {
        using big_endian_output::big_endian_output;
        void write32(uint32 value) override { big_endian_output::write32(value + 1); }
    };
    expect_runs_like_single_calls<callers_input, callers_output>();
}

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
    stream::limited_input endless(source, all_ones);
    EXPECT_EQ(endless.skip(9), 1u); // here what was there counts
    EXPECT_EQ(endless.consumed(), 1u);
    endless.unread("xyz", 3);
    EXPECT_EQ(endless.consumed(), 0u);
    EXPECT_EQ(rest(endless), "xyz");

    byte_vector const data = bytes("abcdef");
    stream::vector_input memory(data);
    stream::limited_input three(memory, 3);
    stream::big_endian_input numbers(three);
    EXPECT_EQ(numbers.read16(), 0x6162);
    EXPECT_EQ(numbers.read16(), 0xFFFF); // the second byte lies in memory, but behind the limit
    EXPECT_EQ(memory.tell(), 3u);
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
