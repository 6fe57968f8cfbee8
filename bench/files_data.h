#pragma once

#include "bench/lines_data.h"
#include "bench/rows.h"
#include "bench/scratch.h"

/// The rows of whole files, and what they read and write.
namespace bench {

inline char const * const file_reads = "byte reads, file of 64 MiB";
inline char const * const file_writes = "byte writes, file of 64 MiB";
inline char const * const file_lines = "lines, file of 64 MiB";
inline char const * const file_copies = "copies, file to file, 256 MiB";

inline uint32 const file_block = 64 << 10;
inline uint32 const file_size = sized(64u << 20);
inline uint32 const copy_size = sized(256u << 20);

inline std::string const & text_file() {
    static std::string const path = scratch::folder().file("lines", lines_of(file_size));
    return path;
}

inline std::string const & large_file() {
    static std::string const path = scratch::folder().file("large", std::string(copy_size, 'x'));
    return path;
}

inline std::string target_file() { return scratch::folder().path("target").string(); }

/// Adds `turn`, which goes through `items`, to a row.
inline void add_file_row(char const * row, char const * who, void (*turn)(), uint64 items) {
    add(row, who, [=](benchmark::State & state) {
        turn();
        meter const meter;
        for (auto _ : state)
            turn();
        meter.done(state, items);
    });
}

} // namespace bench
