// Trees as a whole: chains of folders that are removed, and a scan ten folders down, with and without a volume
// attached.

#include "bench/rows.h"
#include "bench/scratch.h"
#include "socle/io/directory.h"
#include "socle/nio/directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

io::directory directory_at(fs::path const & path) {
    return io::directory(any::path(any::string(platform::from_host(path.string())), true));
}

/// Makes folders in each other, deeper than the host has paths for.
fs::path make_chain(uint32 depth) {
    fs::path const top = bench::scratch::folder().path("chain");
    fs::create_directory(top);
    int at = open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (uint32 i = 0; i < depth; ++i) {
        if (mkdirat(at, "folder", 0777) != 0)
            std::abort();
        int const below = openat(at, "folder", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(at);
        at = below;
    }
    close(at);
    return top;
}

/// An attached volume beside what is measured.
class volume {
public:
    volume() {
        fs::path const folder = bench::scratch::folder().path("volume");
        fs::create_directory(folder);
        if (platform::attach_volume('V', folder.string(), "FAT32") != 0)
            std::abort();
    }
    volume(volume const &) = delete;
    volume & operator=(volume const &) = delete;
    ~volume() { platform::detach_volume('V'); }
};

using removal = void (*)(fs::path const & top);

/// The time of `remove` alone.
void measure_removal(benchmark::State & state, uint32 depth, bool attached, removal remove) {
    std::unique_ptr<volume> const on = attached ? std::make_unique<volume>() : nullptr;
    for (auto _ : state) {
        state.PauseTiming();
        fs::path const top = make_chain(depth);
        state.ResumeTiming();
        remove(top);
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * depth));
}

/// 1,000 files, ten folders down.
fs::path const & deep_tree() {
    static fs::path const top = [] {
        fs::path const made = bench::scratch::folder().path("deep");
        fs::path folder = made;
        for (int i = 0; i < 10; ++i)
            folder /= "folder";
        fs::create_directories(folder);
        for (int i = 0; i < 1000; ++i)
            std::ofstream(folder / std::to_string(i)) << i;
        return made;
    }();
    return top;
}

void measure_scan(benchmark::State & state, bool attached) {
    io::directory top = directory_at(deep_tree());
    std::unique_ptr<volume> const on = attached ? std::make_unique<volume>() : nullptr;
    for (auto _ : state) {
        io::item::summary sum;
        top.scan(sum);
        if (sum.files != 1000)
            std::abort();
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}

/// Removes a chain by the host's own calls: down, then up.
void remove_chain(fs::path const & top) {
    std::vector<int> opened{open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    for (int below; (below = openat(opened.back(), "folder", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) >= 0;)
        opened.push_back(below);
    for (; !opened.empty(); opened.pop_back()) {
        unlinkat(opened.back(), "folder", AT_REMOVEDIR);
        close(opened.back());
    }
    rmdir(top.c_str());
}

uint64 count_files(std::string const & path) {
    DIR * const folder = opendir(path.c_str());
    uint64 found = 0;
    while (dirent const * const entry = readdir(folder)) {
        struct stat about;
        if (entry->d_name[0] == '.')
            continue;
        if (entry->d_type == DT_DIR)
            found += count_files(path + '/' + entry->d_name);
        else
            found += fstatat(dirfd(folder), entry->d_name, &about, 0) == 0;
    }
    closedir(folder);
    return found;
}

[[maybe_unused]] bool const registered = [] {
    for (uint32 const depth : {600u, 1200u}) {
        auto const add = [=](std::string const & who, bool attached, removal remove) {
            bench::add("remove a chain of folders, " + std::to_string(depth) + " deep", who, measure_removal, depth,
                       attached, remove);
        };
        auto const with_io = [](fs::path const & top) { directory_at(top).unlink_with_children(true); };
        auto const with_nio = [](fs::path const & top) {
            nio::directory(platform::from_host(top.string())).unlink_with_children(true);
        };
        // A chain deeper than this process may have descriptors has no limit that is as simple.
        if (depth < 1000)
            add("limit: openat and unlinkat", false, remove_chain);
        add("std::filesystem", false, [](fs::path const & top) { fs::remove_all(top); });
        add("socle, io::directory", false, with_io);
        add("socle, nio::directory", false, with_nio);
        add("socle, nio::directory, a volume attached", true, with_nio);
    }
    bench::add("scan 1,000 files, 10 deep", "limit: readdir and fstatat", [](benchmark::State & state) {
        for (auto _ : state)
            if (count_files(deep_tree().string()) != 1000)
                std::abort();
        state.SetItemsProcessed(state.iterations() * 1000);
    });
    bench::add("scan 1,000 files, 10 deep", "socle, no volume attached", measure_scan, false);
    bench::add("scan 1,000 files, 10 deep", "socle, a volume attached", measure_scan, true);
    return true;
}();

} // namespace
