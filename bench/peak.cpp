// The peak of resident memory of one task, less what the program held before it:
//     socle_peak walk-io|walk-nio <folder>     goes through a folder of folders, with what the system says of each file
//     socle_peak copy <from> <to>              copies a data fork

#include "bench/scratch.h"
#include "socle/io/directory.h"
#include "socle/io/fork_input.h"
#include "socle/io/fork_output.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/stream/copier.h"

#include <cstdio>
#include <fstream>
#include <sys/resource.h>

namespace {

/// In KiB.
long peak() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

uint64 walk_io(any::path const & path) {
    uint64 found = 0;
    io::directory folder(path);
    for (auto entry = folder.begin(), last = folder.end(); entry != last; ++entry) {
        entry->load_attributes(io::attributes::no_sidecar);
        found += entry->directory() ? walk_io(entry->path()) : 1;
    }
    return found;
}

uint64 walk_nio(wide_string const & path) {
    uint64 found = 0;
    nio::directory const root(path);
    for (auto folder = root.begin(), last = root.end(); folder != last; ++folder) {
        nio::directory const inner(*folder);
        for (auto entry = inner.begin(); entry != last; ++entry) {
            nio::item item(*entry);
            nio::attributes const attributes(item);
            found += attributes.read_only ? 0 : 1;
        }
    }
    return found;
}

uint64 copy(std::string const & from_path, std::string const & to_path) {
    io::file from = bench::file_at(from_path), to = bench::file_at(to_path);
    from.data_fork().open();
    to.data_fork().create(true);
    io::fork_input in(from.data_fork());
    io::fork_output out(to.data_fork());
    uint64 const moved = stream::copier().process(in, out);
    from.data_fork().close(true);
    to.data_fork().close(true);
    return moved;
}

} // namespace

int main(int argc, char ** argv) {
    std::vector<std::string> const words(argv, argv + argc);
    if (argc < 3)
        return 1;
    long const before = peak();
    wide_string const path = platform::from_host(words[2]);
    uint64 done = 0;
    if (words[1] == "walk-io")
        done = walk_io(any::path(any::string(path), true));
    else if (words[1] == "walk-nio")
        done = walk_nio(path);
    else if (words[1] == "copy" && argc == 4)
        done = copy(words[2], words[3]);
    else
        return 1;
    std::printf("%llu %ld\n", static_cast<unsigned long long>(done), peak() - before);
    return 0;
}
