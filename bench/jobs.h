#pragma once

#include "bench/rows.h"
#include "bench/scratch.h"

#include <cstdio>
#include <map>
#include <memory>
#include <utility>

/// Whole jobs, each beside the plainest program that does the same with the standard library and POSIX: the limit of
/// the row. Every competitor has to come to that program's answer before it is measured.
namespace bench {

struct job {
    std::string row;
    uint64 items;
    uint64 (*plain)();
    uint64 (*left)() = [] { return uint64(0); }; // a digest of what a turn has left on the disk
    void (*prepare)() = [] {};                   // what comes before a turn, which is not measured
};

inline uint64 answer(job const & work, uint64 (*turn)()) {
    work.prepare();
    uint64 const told = turn();
    return told ^ work.left();
}

inline void check(job const & work, std::string const & who, uint64 (*turn)()) {
    static std::map<std::string, uint64> answers;
    auto const [plain, is_new] = answers.try_emplace(work.row);
    if (is_new)
        plain->second = answer(work, work.plain);
    if (answer(work, turn) == plain->second)
        return;
    std::fprintf(stderr, "%s, %s: another answer than that of the plain program\n", work.row.c_str(), who.c_str());
    std::abort();
}

inline void add(job const & work, std::string const & who, uint64 (*turn)()) {
    bench::add(work.row, who, [=, checked = std::make_shared<bool>()](benchmark::State & state) {
        if (!std::exchange(*checked, true))
            check(work, who, turn);
        uint64 allocated = 0;
        for (auto _ : state) {
            state.PauseTiming();
            work.prepare();
            state.ResumeTiming();
            meter const meter;
            benchmark::DoNotOptimize(turn());
            allocated += meter.taken();
        }
        meter::report(state, work.items, allocated);
    });
}

/// 100,000 Finder records in a file.
job records_job();
std::string const & records_file();

/// What the records come to.
class record_sum {
public:
    void add(uint32 type, uint32 creator, uint32 flags, int v, int h) {
        sum_ = sum_ * 31 + (uint64(type) << 32 ^ creator) + flags * 7 + static_cast<uint32>(v * 11 + h);
    }
    operator uint64() const { return sum_; }

private:
    uint64 sum_ = 0;
};

/// A text of 100 MB, lines of numbers with a space between two.
job numbers_job();
std::string const & numbers_file();

/// A text of 64 MiB in page 932, which becomes UTF-8 in another file.
job conversion_job();
std::string const & page_file();
std::string utf8_file();

} // namespace bench
