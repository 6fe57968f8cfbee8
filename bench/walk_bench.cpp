// A walk over 20,000 files in 100 folders, with what the system says of each.

#include "io/directory.h"
#include "nio/attributes.h"
#include "nio/directory.h"
#include "platform/host.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr int folders = 100, files = 200;

/// The tree, made once and removed at the end.
class tree {
public:
    tree() : root_(fs::temp_directory_path() / ("socle_walk_" + std::to_string(getpid()))) {
        for (int i = 0; i < folders; ++i) {
            fs::path const folder = root_ / std::to_string(i);
            fs::create_directories(folder);
            for (int k = 0; k < files; ++k)
                std::ofstream(folder / ("file " + std::to_string(k) + ".txt")) << k;
        }
    }
    ~tree() { fs::remove_all(root_); }

    static tree const & made() {
        static tree const one;
        return one;
    }
    fs::path const & host() const { return root_; }
    wide_string path() const { return platform::from_host(root_.string()); }

private:
    fs::path root_;
};

void done(benchmark::State & state) { state.SetItemsProcessed(state.iterations() * folders * files); }

void host_walk(benchmark::State & state, bool times) {
    for (auto _ : state) {
        std::size_t found = 0;
        for (auto const & entry : fs::recursive_directory_iterator(tree::made().host())) {
            found += entry.status().type() == fs::file_type::regular;
            if (times)
                benchmark::DoNotOptimize(entry.last_write_time());
        }
        benchmark::DoNotOptimize(found);
    }
    done(state);
}

void walk(io::directory & folder, bool load, std::size_t & found) {
    for (auto entry = folder.begin(), last = folder.end(); entry != last; ++entry) {
        if (load)
            entry->load_attributes(0);
        if (entry->directory()) {
            io::directory below(entry->path());
            walk(below, load, found);
        } else {
            ++found;
        }
    }
}

void model_walk(benchmark::State & state, bool load) {
    for (auto _ : state) {
        std::size_t found = 0;
        io::directory root(any::path(any::string(tree::made().path()), true));
        walk(root, load, found);
        benchmark::DoNotOptimize(found);
    }
    done(state);
}

void wide_walk(benchmark::State & state) {
    for (auto _ : state) {
        std::size_t found = 0;
        nio::directory const root(tree::made().path());
        for (auto folder = root.begin(), last = root.end(); folder != last; ++folder) {
            nio::directory const inner(*folder);
            for (auto entry = inner.begin(); entry != last; ++entry) {
                nio::item item(*entry);
                nio::attributes const attributes(item);
                found += attributes.read_only ? 0 : 1;
            }
        }
        benchmark::DoNotOptimize(found);
    }
    done(state);
}

[[maybe_unused]] bool const registered = [] {
    benchmark::RegisterBenchmark("walk, 20,000 files/limit: recursive_directory_iterator, status", host_walk, false);
    benchmark::RegisterBenchmark("walk, 20,000 files/the same with the time of the last write", host_walk, true);
    benchmark::RegisterBenchmark("walk, 20,000 files/socle, io::directory", model_walk, false);
    benchmark::RegisterBenchmark("walk, 20,000 files/socle, io::directory, attributes", model_walk, true);
    benchmark::RegisterBenchmark("walk, 20,000 files/socle, nio::directory, attributes", wide_walk);
    return true;
}();

} // namespace
