#pragma once

#include "bench/rows.h"
#include "bench/scratch.h"

namespace bench {

/// Rows of one path, which has a file of 2 KiB.
inline char const * const exists_row = "path: whether it exists";
inline char const * const folder_row = "path: whether it is a folder";
inline char const * const fork_row = "path: open, read 1 KiB and close";

inline std::string const & asked_path() {
    static std::string const path = [] {
        std::filesystem::create_directories(scratch::folder().path("a/b/c"));
        return scratch::folder().file("a/b/c/some file.txt", std::string(2048, 'x'));
    }();
    return path;
}

/// Measures `ask`, which is true of the path.
inline void add_path(char const * row, char const * who, bool (*ask)(std::string const &)) {
    add(row, who, [=](benchmark::State & state) {
        std::string const & path = asked_path();
        meter const meter;
        for (auto _ : state)
            if (!ask(path))
                std::abort();
        meter.done(state, 1);
    });
}

} // namespace bench
