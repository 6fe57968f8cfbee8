// Recursive walks through 500 folders with 20,000 files, as a client writes them: what kind each entry is, and what the
// system says of each file.

#include "bench/walk_data.h"
#include "socle/io/directory.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <fts.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <string_view>

namespace {

namespace fs = std::filesystem;

using bench::walk_tree;

uint64 const files = uint64(bench::walk_folders) * bench::walk_files;

bool dots(char const * name) { return std::string_view(name) == "." || std::string_view(name) == ".."; }

uint64 stat_in(int folder, char const * name) {
    struct stat found;
    return fstatat(folder, name, &found, 0) == 0 ? 1 : 0;
}

/// The system's own calls, in one block for a folder.
uint64 walk_getdents(int folder, bool attributes) {
    alignas(dirent64) char block[32 << 10];
    uint64 found = 0;
    for (long got; (got = syscall(SYS_getdents64, folder, block, sizeof block)) > 0;) {
        for (long at = 0; at < got;) {
            auto const & entry = *reinterpret_cast<dirent64 const *>(block + at);
            at += entry.d_reclen;
            if (dots(entry.d_name))
                continue;
            if (entry.d_type == DT_DIR) {
                int const below = openat(folder, entry.d_name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
                found += walk_getdents(below, attributes);
                close(below);
            } else {
                found += attributes ? stat_in(folder, entry.d_name) : 1;
            }
        }
    }
    return found;
}

uint64 walk_system(bool attributes) {
    int const root = open(walk_tree().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    uint64 const found = walk_getdents(root, attributes);
    close(root);
    return found;
}

uint64 walk_readdir_in(std::string const & path, bool attributes) {
    DIR * const folder = opendir(path.c_str());
    uint64 found = 0;
    while (dirent const * const entry = readdir(folder)) {
        if (dots(entry->d_name))
            continue;
        if (entry->d_type == DT_DIR)
            found += walk_readdir_in(path + '/' + entry->d_name, attributes);
        else
            found += attributes ? stat_in(dirfd(folder), entry->d_name) : 1;
    }
    closedir(folder);
    return found;
}

uint64 walk_readdir(bool attributes) { return walk_readdir_in(walk_tree().string(), attributes); }

uint64 walk_fts(bool attributes) {
    char const * const roots[] = {walk_tree().c_str(), nullptr};
    FTS * const walk = fts_open(const_cast<char **>(roots), FTS_PHYSICAL | (attributes ? 0 : FTS_NOSTAT), nullptr);
    uint64 found = 0;
    while (FTSENT const * const entry = fts_read(walk))
        found += entry->fts_info == FTS_F || entry->fts_info == FTS_NSOK ? 1 : 0;
    fts_close(walk);
    return found;
}

uint64 walk_filesystem(bool attributes) {
    uint64 found = 0;
    for (auto const & entry : fs::recursive_directory_iterator(walk_tree())) {
        bool const is_file = entry.is_regular_file();
        found += is_file;
        if (attributes && is_file) {
            benchmark::DoNotOptimize(entry.file_size());
            benchmark::DoNotOptimize(entry.last_write_time());
        }
    }
    return found;
}

uint64 walk_filesystem_status(bool) {
    uint64 found = 0;
    for (auto const & entry : fs::recursive_directory_iterator(walk_tree()))
        found += fs::is_regular_file(fs::status(entry.path()));
    return found;
}

uint64 walk_io_in(io::directory const & folder, bool attributes) {
    uint64 found = 0;
    for (auto entry = folder.begin(), end = folder.end(); entry != end; ++entry) {
        if (entry.is_directory()) {
            found += walk_io_in(io::directory(*entry), attributes);
            continue;
        }
        if (attributes)
            entry.load_attributes(io::attributes::no_sidecar);
        ++found;
    }
    return found;
}

uint64 walk_io(bool attributes) {
    return walk_io_in(io::directory(any::path(any::string(platform::from_host(walk_tree().string())), true)),
                      attributes);
}

uint64 walk_nio_in(nio::directory const & folder, bool attributes) {
    uint64 found = 0;
    for (auto entry = folder.begin(), end = folder.end(); entry != end; ++entry) {
        if (entry.is_directory()) {
            found += walk_nio_in(nio::directory(*entry), attributes);
            continue;
        }
        if (attributes) {
            nio::attributes loaded;
            entry.load(loaded);
            benchmark::DoNotOptimize(loaded);
        }
        ++found;
    }
    return found;
}

uint64 walk_nio(bool attributes) {
    return walk_nio_in(nio::directory(platform::from_host(walk_tree().string())), attributes);
}

[[maybe_unused]] bool const registered = [] {
    auto const add = [](bool attributes, std::string const & who, uint64 (*walk)(bool)) {
        auto const measure = [=](benchmark::State & state) {
            if (walk(attributes) != files)
                std::abort();
            bench::meter const meter;
            for (auto _ : state)
                benchmark::DoNotOptimize(walk(attributes));
            meter.done(state, files);
        };
        bench::add(bench::walk_row(attributes), who, measure);
    };
    for (bool const attributes : {false, true}) {
        add(attributes, attributes ? "limit: getdents64 and fstatat" : "limit: getdents64", walk_system);
        add(attributes, attributes ? "readdir and fstatat" : "readdir", walk_readdir);
        add(attributes, attributes ? "fts" : "fts, no status", walk_fts);
        add(attributes, attributes ? "std::filesystem, size and time" : "std::filesystem", walk_filesystem);
        add(attributes, "socle, io::directory, sorted", walk_io);
        add(attributes, "socle, nio::directory, sorted", walk_nio);
    }
    add(false, "status of each: std::filesystem", walk_filesystem_status);
    return true;
}();

} // namespace
