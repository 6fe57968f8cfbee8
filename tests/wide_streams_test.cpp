#include "socle/basic/buffer.h"
#include "socle/nio/buffered_input.h"
#include "socle/nio/buffered_output.h"
#include "socle/nio/channel.h"
#include "socle/nio/exception.h"
#include "socle/nio/multi_input.h"
#include "socle/nio/multi_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>

namespace {

using support::failure;
using support::fragment_source;
using support::recording_target;

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

struct series : nio::multi_input {
    explicit series(std::vector<std::string> const & members) {
        for (auto const & member : members)
            sources.emplace_back(std::vector<std::string>{member});
        series::next();
    }
    void next() override { source(at < sources.size() ? &sources[at++] : nullptr); }
    std::deque<fragment_source> sources;
    std::size_t at = 0;
};

TEST(wide_multi_input, reads_across_sources) {
    series in({"abc", "", "defg"});
    char block[10];
    EXPECT_EQ(in.read(block, 0), 0u);
    EXPECT_EQ(in.read(block, 4), 4u);
    EXPECT_EQ(in.tell(), 4u);
    EXPECT_EQ(in.read(block, 10), 3u);
    EXPECT_EQ(std::string(block, 3), "efg");
    EXPECT_EQ(in.read(block, 1), 0u);
    EXPECT_EQ(in.tell(), 7u);
}

struct files : nio::multi_output {
    files(std::vector<uint64> l, int n = 0) : limits(std::move(l)), failing(n) {}
    using multi_output::limit;
    void next() override {
        target(nullptr);
        if (targets.size() < limits.size()) {
            limit(limits[targets.size()]);
            targets.emplace_back(std::exchange(failing, 0));
            target(&targets.back());
        }
    }
    std::string written_to_all() const { return support::joined(targets); }
    std::vector<uint64> limits;
    std::deque<recording_target> targets;
    int failing;
};

TEST(wide_multi_output, fills_each_piece_and_runs_out) {
    files out({10, 10, 0, 10});
    out.write("0123456789", 10);
    EXPECT_EQ(out.targets.size(), 1u);
    out.write("abcdefghijABCDE", 15);
    out.write('F');
    EXPECT_EQ(out.written_to_all(), "0123456789|abcdefghij||ABCDEF|");
    EXPECT_EQ(out.tell(), 26u);
    for (int i = 0; i < 2; ++i) {
        try {
            out.write("GHIJKL", 6);
            ADD_FAILURE();
        } catch (nio::exception const & e) {
            EXPECT_EQ(e.message(), "multi_output has run out of files to write");
        }
        EXPECT_EQ(out.tell(), 30u);
    }
    files narrowed({5, 5});
    narrowed.write("abc", 3);
    narrowed.limit(1);
    narrowed.write("de", 2);
    EXPECT_EQ(narrowed.written_to_all(), "abc|de|");
}

TEST(wide_multi_output, can_go_on_after_a_target_failed) {
    std::string const data = "abcdefghijklmnop";
    for (int n = 1; n <= 4; ++n) {
        files out({5, 5, 5, 5}, n);
        for (uint64 at = 0; at < data.size(); at = out.tell()) {
            try {
                out.write(data.data() + at, static_cast<uint32>(std::min<uint64>(1 + at % 7, data.size() - at)));
            } catch (failure const &) {
            }
        }
        EXPECT_EQ(out.written_to_all(), "abcde|fghij|klmno|p|") << n;
    }
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
}

TEST(wide_buffered_input, stays_true_over_any_source) {
    auto const data = support::text(support::pattern(500));
    for (uint32 seed = 0; seed < 300; ++seed) {
        support::drops drops(data);
        support::failing_source source(drops, static_cast<int>(seed % 40));
        nio::buffered_input in(source, seed % 13);
        std::mt19937 random(seed);
        std::string got;
        while (got.size() < data.size()) {
            char block[24];
            auto const size = static_cast<uint32>(1 + random() % 23);
            try {
                uint32 const count = in.read(block, size);
                got.append(block, count);
            } catch (failure const &) {
                // What was handed out before is the caller's, as the position tells.
                got.append(block, static_cast<std::size_t>(in.tell() - got.size()));
            }
            ASSERT_EQ(in.tell(), got.size()) << seed;
        }
        EXPECT_EQ(got, data) << seed;
    }
    support::lying_source liar;
    nio::buffered_input in(liar, 8);
    char block[3];
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.read(block, 3), 3u);
    EXPECT_EQ(in.tell(), 6u);
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

TEST(wide_buffered_output, loses_nothing_when_the_target_fails) {
    for (int n = 1; n < 40; ++n) {
        recording_target target(n);
        std::string taken;
        {
            nio::buffered_output out(target, static_cast<uint32>(1 + n % 7));
            std::mt19937 random(static_cast<uint32>(n));
            for (int step = 0; step < 60; ++step) {
                std::string const piece(random() % 10, static_cast<char>('a' + step % 26));
                try {
                    if (piece.size() == 1)
                        out.write(static_cast<unsigned char>(piece[0]));
                    else
                        out.write(piece.data(), static_cast<uint32>(piece.size()));
                    taken += piece;
                } catch (failure const &) {
                }
                ASSERT_EQ(out.tell(), taken.size());
            }
        }
        EXPECT_EQ(target.data, taken) << n;
    }
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

} // namespace
