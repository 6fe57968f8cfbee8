/// Runs a target once for each file given, and each file in a folder given, so that any compiler can do it. Says how
/// many there were; none at all is a failure.

#include "fuzz/support/feed.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// Sorted, so that every run is the same.
std::vector<fs::path> files_at(fs::path const & given) {
    if (!fs::is_directory(given))
        return {given};
    std::vector<fs::path> found;
    for (auto const & entry : fs::recursive_directory_iterator(given))
        if (entry.is_regular_file())
            found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

} // namespace

int main(int argc, char ** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (auto const & path : files_at(argv[i])) {
            std::ifstream in(path, std::ios::binary);
            if (!in) {
                std::cerr << "cannot read " << path << '\n';
                return 1;
            }
            // Shown before the run, for whoever has to look for the input that ended it.
            std::cout << path.string() << std::endl;
            std::string const input(std::istreambuf_iterator<char>(in), {});
            fuzz::run(input);
            ++count;
        }
    }
    std::cout << count << " inputs\n";
    return count > 0 ? 0 : 1;
}
