#include "socle/stream/multi_input.h"
#include "socle/stream/multi_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

#include <deque>

namespace {

using support::failure;
using support::fragment_source;
using support::raised;
using support::recording_target;
using support::rest;

struct series : stream::multi_input {
    explicit series(std::vector<std::string> const & members) {
        for (auto const & member : members)
            sources.emplace_back(std::vector<std::string>{member});
        if (!sources.empty())
            under(sources[0]);
    }
    void next() override {
        if (++at < sources.size())
            under(sources[at]);
        else
            multi_input::next();
    }
    std::deque<fragment_source> sources;
    std::size_t at = 0;
};

TEST(multi_input, reads_a_series_as_one) {
    for (std::vector<std::string> const & members :
         {std::vector<std::string>{"ab", "", "cde"}, {"", "", "abcde"}, {"a", "b", "c", "d", "e"}}) {
        series single(members), block(members), skipping(members);
        EXPECT_EQ(rest(single), "abcde");
        EXPECT_EQ(single.read(), -1);
        EXPECT_EQ(single.tell(), 5u);
        char data[10];
        EXPECT_EQ(block.read(data, 0), 0u);
        EXPECT_EQ(block.read(data, 10), 5u);
        EXPECT_EQ(std::string(data, 5), "abcde");
        EXPECT_EQ(block.tell(), 5u);
        EXPECT_EQ(block.size(), all_ones);
        EXPECT_EQ(skipping.skip(3), 3u);
        EXPECT_EQ(rest(skipping), "de");
        EXPECT_EQ(skipping.skip(1), 0u);
    }
    series none({});
    EXPECT_EQ(none.read(), -1);
    EXPECT_EQ(none.tell(), 0u);
}

/// Gives `limits.size()` targets; the n-th of all their writes fails.
struct files : stream::multi_output {
    explicit files(std::vector<uint64> l, int n = 0) : limits(std::move(l)), failing(n) {}
    using multi_output::limit;
    void next() override {
        ++asked;
        if (targets.size() == limits.size()) {
            multi_output::next();
            return;
        }
        limit(limits[targets.size()]);
        targets.emplace_back(std::exchange(failing, 0));
        under(targets.back());
    }
    std::string written_to_all() const { return support::joined(targets); }
    std::vector<uint64> limits;
    std::deque<recording_target> targets;
    int failing;
    int asked = 0;
};

std::string const run_out = "stream::multi_output: I have run out of files to write";

TEST(multi_output, fills_each_target) {
    struct {
        std::vector<uint64> limits;
        std::vector<std::string> writes;
        std::string files;
        int asked;
    } const table[] = {
        {{10, 10}, {"0123456789"}, "0123456789|", 1},
        {{4, 0, 0, 4}, {"abc", "", "defg"}, "abcd|||efg|", 4},
        {{0, 1, 0, 1}, {"a", "b"}, "|a||b|", 4},
        {{3}, {}, "", 0},
    };
    for (auto const & c : table) {
        files blocks(c.limits), singles(c.limits);
        for (auto const & piece : c.writes) {
            blocks.write(piece.data(), static_cast<uint32>(piece.size()));
            for (char const byte : piece)
                singles.write(byte);
        }
        EXPECT_EQ(blocks.written_to_all(), c.files);
        EXPECT_EQ(singles.written_to_all(), c.files);
        EXPECT_EQ(blocks.asked, c.asked);
        EXPECT_EQ(blocks.size(), all_ones);
    }
}

TEST(multi_output, runs_out_of_files_for_good) {
    files out({4, 4});
    EXPECT_EQ(raised([&] { out.write("123456789", 9); }), run_out);
    EXPECT_EQ(out.written_to_all(), "1234|5678|");
    EXPECT_EQ(raised([&] { out.write("x", 1); }), run_out);
    EXPECT_EQ(raised([&] { out.write('x'); }), run_out);
    EXPECT_EQ(out.tell(), 8u);
    EXPECT_EQ(out.asked, 3);
    EXPECT_THROW(out.write(narrow_string("x")), stream::exception);
}

TEST(multi_output, a_limit_may_fall_below_what_is_written) {
    files out({10, 10});
    out.write("abcd", 4);
    out.limit(2);
    out.write("", 0);
    EXPECT_EQ(out.asked, 1);
    out.write("ef", 2);
    EXPECT_EQ(out.written_to_all(), "abcd|ef|");
    out.limit(1);
    EXPECT_EQ(raised([&] { out.write('g'); }), run_out);
}

TEST(multi_output, a_target_that_is_called_for_early_starts_empty) {
    files out({10, 4, 4});
    out.write("abcdef", 6);
    out.next();
    EXPECT_EQ(out.written(), 0u);
    out.write("0123456", 7);
    EXPECT_EQ(out.written_to_all(), "abcdef|0123|456|");
    EXPECT_EQ(out.tell(), 13u);

    // A series that fails to go on is asked again.
    struct : files {
        using files::files;
        void next() override {
            files::next();
            if (asked == 2)
                throw failure();
        }
    } failing({2, 2, 2});
    EXPECT_THROW(failing.write("abcd", 4), failure);
    failing.write("cd", 2);
    EXPECT_EQ(failing.written_to_all(), "ab||cd|");
}

TEST(multi_output, loses_nothing_when_a_target_fails) {
    std::string const data = "abcdefghijklmnopqrstuvwxyz";
    for (int n = 1; n <= 8; ++n) {
        files out({7, 7, 7, 7}, n);
        std::size_t at = 0;
        int failures = 0;
        while (at < data.size()) {
            auto const count = std::min<std::size_t>(1 + at % 5, data.size() - at);
            try {
                if (count == 1)
                    out.write(data[at]);
                else
                    out.write(data.data() + at, static_cast<uint32>(count));
            } catch (failure const &) {
                ++failures;
            }
            at = static_cast<std::size_t>(out.tell()); // what did not arrive is written again
        }
        EXPECT_EQ(out.written_to_all(), "abcdefg|hijklmn|opqrstu|vwxyz|") << n;
        EXPECT_LE(failures, 1);
        EXPECT_EQ(failures, n <= 3 ? 1 : failures);
    }
}

} // namespace
