#pragma once

#include "bench/rows.h"
#include "bench/scratch.h"

/// What the walks go through.
namespace bench {

inline uint32 const walk_folders = sized(500), walk_files = 40;

/// A tree: 25 folders in a folder, 40 files in each.
inline std::filesystem::path make_tree(std::string const & name) {
    std::filesystem::path const made = scratch::folder().path(name);
    for (uint32 i = 0; i < walk_folders; ++i) {
        std::filesystem::path const above = made / std::to_string(i / 25);
        std::filesystem::path const folder = i % 25 == 0 ? above : above / std::to_string(i);
        std::filesystem::create_directories(folder);
        for (uint32 k = 0; k < walk_files; ++k)
            std::ofstream(folder / ("file " + std::to_string(k) + ".txt")) << k;
    }
    return made;
}

/// The tree that the rows of walks share, made once.
inline std::filesystem::path const & walk_tree() {
    static std::filesystem::path const root = make_tree("tree");
    return root;
}

inline std::string walk_row(bool attributes) {
    return attributes ? "walk 500 folders with attributes, 20,000 files" : "walk 500 folders, 20,000 files";
}

} // namespace bench
