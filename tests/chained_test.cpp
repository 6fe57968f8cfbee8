#include "socle/nio/exception.h"
#include "socle/nio/multi_input.h"
#include "socle/nio/multi_output.h"
#include "socle/stream/multi_input.h"
#include "socle/stream/multi_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

#include <deque>

// Series of streams, of both families.

namespace {

using support::failure;
using support::fragment_source;
using support::recording_target;

std::string const words = "run out of files to write";

/// How a family goes to the next member, null for none, and what it throws without one.
struct narrow {
    struct input : stream::multi_input {
        void go(fragment_source * to) { to != nullptr ? under(*to) : multi_input::next(); }
    };
    struct output : stream::multi_output {
        using multi_output::limit;
        void go(recording_target * to) { to != nullptr ? under(*to) : multi_output::next(); }
    };
    static std::string raised(auto && call) { return support::raised(call); }
    static inline std::string const run_out = "stream::multi_output: I have " + words;
};

struct wide {
    struct input : nio::multi_input {
        void go(fragment_source * to) { source(to); }
    };
    struct output : nio::multi_output {
        using multi_output::limit;
        void go(recording_target * to) { target(to); }
    };
    static std::string raised(auto && call) {
        try {
            call();
        } catch (nio::exception const & e) {
            return e.message();
        }
        return "nothing";
    }
    static inline std::string const run_out = "multi_output has " + words;
};

template <class Family>
struct series : Family::input {
    explicit series(std::vector<std::string> const & members) {
        for (auto const & member : members)
            sources.emplace_back(std::vector<std::string>{member});
        series::next();
    }
    void next() override { this->go(at < sources.size() ? &sources[at++] : nullptr); }

    std::deque<fragment_source> sources;
    std::size_t at = 0;
};

/// Gives `limits.size()` targets; the n-th of all their writes fails.
template <class Family>
struct files : Family::output {
    explicit files(std::vector<uint64> l, int n = 0) : limits(std::move(l)), failing(n) {}
    void next() override {
        ++asked;
        if (targets.size() == limits.size())
            return this->go(nullptr);
        this->limit(limits[targets.size()]);
        targets.emplace_back(std::exchange(failing, 0));
        this->go(&targets.back());
    }
    std::string written_to_all() const { return support::joined(targets); }

    std::vector<uint64> limits;
    std::deque<recording_target> targets;
    int failing;
    int asked = 0;
};

template <class Family>
struct multi : testing::Test {};
using families = testing::Types<narrow, wide>;
TYPED_TEST_SUITE(multi, families);

TYPED_TEST(multi, reads_a_series_as_one) {
    for (std::vector<std::string> const & members :
         {std::vector<std::string>{"ab", "", "cde"}, {"", "", "abcde"}, {"a", "b", "c", "d", "e"}}) {
        series<TypeParam> in(members);
        char data[10];
        EXPECT_EQ(in.read(data, 0), 0u);
        EXPECT_EQ(in.read(data, 1), 1u);
        EXPECT_EQ(in.read(data + 1, 9), 4u);
        EXPECT_EQ(std::string(data, 5), "abcde");
        EXPECT_EQ(in.read(data, 1), 0u);
        EXPECT_EQ(in.tell(), 5u);
        EXPECT_EQ(in.size(), all_ones);
    }
    EXPECT_EQ(series<TypeParam>({}).tell(), 0u);
}

TYPED_TEST(multi, fills_each_target) {
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
        files<TypeParam> blocks(c.limits), singles(c.limits);
        for (auto const & piece : c.writes) {
            blocks.write(piece.data(), static_cast<uint32>(piece.size()));
            for (char const byte : piece)
                singles.write(static_cast<unsigned char>(byte));
        }
        EXPECT_EQ(blocks.written_to_all(), c.files);
        EXPECT_EQ(singles.written_to_all(), c.files);
    }
}

TYPED_TEST(multi, runs_out_of_files_for_good) {
    files<TypeParam> out({4, 4});
    auto const raised = [](auto && call) { return TypeParam::raised(call); };
    EXPECT_EQ(raised([&] { out.write("123456789", 9); }), TypeParam::run_out);
    EXPECT_EQ(out.written_to_all(), "1234|5678|");
    EXPECT_EQ(raised([&] { out.write("x", 1); }), TypeParam::run_out);
    EXPECT_EQ(raised([&] { out.write(static_cast<unsigned char>('x')); }), TypeParam::run_out);
    EXPECT_EQ(out.tell(), 8u);
    EXPECT_EQ(out.asked, 3);
}

TYPED_TEST(multi, a_limit_may_fall_below_what_is_written) {
    files<TypeParam> out({10, 10});
    out.write("abcd", 4);
    out.limit(2);
    out.write("ef", 2);
    EXPECT_EQ(out.written_to_all(), "abcd|ef|");
    EXPECT_EQ(out.written(), 2u);
}

TYPED_TEST(multi, loses_nothing_when_a_target_fails) {
    std::string const data = "abcdefghijklmnopqrstuvwxyz";
    for (int n = 1; n <= 8; ++n) {
        files<TypeParam> out({7, 7, 7, 7}, n);
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

TEST(multi_output, a_target_that_is_called_for_early_starts_empty) {
    files<narrow> out({10, 4, 4});
    out.write("abcdef", 6);
    out.next();
    EXPECT_EQ(out.written(), 0u);
    out.write("0123456", 7);
    EXPECT_EQ(out.written_to_all(), "abcdef|0123|456|");
    EXPECT_EQ(out.tell(), 13u);
    EXPECT_EQ(out.size(), all_ones);

    // A series that fails to go on is asked again.
    struct : files<narrow> {
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

} // namespace
