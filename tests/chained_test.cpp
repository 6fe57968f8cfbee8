#include "socle/nio/exception.h"
#include "socle/nio/multi_input.h"
#include "socle/nio/multi_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

#include <deque>

// Series of the family nio. What those of the family stream do, random chains show.

namespace {

using support::failure;
using support::fragment_source;
using support::recording_target;

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

/// Gives `limits.size()` targets; the n-th of all their writes fails.
struct files : nio::multi_output {
    using multi_output::limit;
    explicit files(std::vector<uint64> l, int n = 0) : limits(std::move(l)), failing(n) {}
    void next() override {
        ++asked;
        if (targets.size() == limits.size())
            return target(nullptr);
        limit(limits[targets.size()]);
        targets.emplace_back(std::exchange(failing, 0));
        target(&targets.back());
    }
    std::string written_to_all() const { return support::joined(targets); }

    std::vector<uint64> limits;
    std::deque<recording_target> targets;
    int failing;
    int asked = 0;
};

std::string raised(auto && call) {
    try {
        call();
    } catch (nio::exception const & e) {
        return e.message();
    }
    return "nothing";
}

TEST(multi, reads_a_series_as_one) {
    for (std::vector<std::string> const & members :
         {std::vector<std::string>{"ab", "", "cde"}, {"", "", "abcde"}, {"a", "b", "c", "d", "e"}}) {
        series in(members);
        char data[10];
        EXPECT_EQ(in.read(data, 0), 0u);
        EXPECT_EQ(in.read(data, 1), 1u);
        EXPECT_EQ(in.read(data + 1, 9), 4u);
        EXPECT_EQ(std::string(data, 5), "abcde");
        EXPECT_EQ(in.read(data, 1), 0u);
        EXPECT_EQ(in.tell(), 5u);
        EXPECT_EQ(in.size(), all_ones);
    }
    EXPECT_EQ(series({}).tell(), 0u);
}

TEST(multi, fills_each_target) {
    struct {
        std::vector<uint64> limits;
        std::vector<std::string> writes;
        std::string files;
    } const table[] = {
        {{10, 10}, {"0123456789"}, "0123456789|"},
        {{4, 0, 0, 4}, {"abc", "", "defg"}, "abcd|||efg|"},
        {{0, 1, 0, 1}, {"a", "b"}, "|a||b|"},
        {{3}, {}, ""},
    };
    for (auto const & c : table) {
        files blocks(c.limits), singles(c.limits);
        for (auto const & piece : c.writes) {
            blocks.write(piece.data(), static_cast<uint32>(piece.size()));
            for (char const byte : piece)
                singles.write(static_cast<unsigned char>(byte));
        }
        EXPECT_EQ(blocks.written_to_all(), c.files);
        EXPECT_EQ(singles.written_to_all(), c.files);
    }
}

TEST(multi, runs_out_of_files_for_good) {
    files out({4, 4});
    std::string const run_out = "multi_output has run out of files to write";
    EXPECT_EQ(raised([&] { out.write("123456789", 9); }), run_out);
    EXPECT_EQ(out.written_to_all(), "1234|5678|");
    EXPECT_EQ(raised([&] { out.write("x", 1); }), run_out);
    EXPECT_EQ(raised([&] { out.write(static_cast<unsigned char>('x')); }), run_out);
    EXPECT_EQ(out.tell(), 8u);
    EXPECT_EQ(out.asked, 3);
}

TEST(multi, a_limit_may_fall_below_what_is_written) {
    files out({10, 10});
    out.write("abcd", 4);
    out.limit(2);
    out.write("ef", 2);
    EXPECT_EQ(out.written_to_all(), "abcd|ef|");
    EXPECT_EQ(out.written(), 2u);
}

TEST(multi, loses_nothing_when_a_target_fails) {
    std::string const data = "abcdefghijklmnopqrstuvwxyz";
    for (int n = 1; n <= 8; ++n) {
        files out({7, 7, 7, 7}, n);
        int failures = 0;
        // What did not arrive is written again.
        for (std::size_t at = 0; at < data.size(); at = static_cast<std::size_t>(out.tell())) {
            try {
                if (at % 5 == 0)
                    out.write(static_cast<unsigned char>(data[at]));
                else
                    out.write(data.data() + at, static_cast<uint32>(std::min(1 + at % 5, data.size() - at)));
            } catch (failure const &) {
                ++failures;
            }
        }
        EXPECT_EQ(out.written_to_all(), "abcdefg|hijklmn|opqrstu|vwxyz|") << n;
        EXPECT_EQ(failures, n <= 3 ? 1 : failures);
    }
}

} // namespace
