/// Runs a target once for each file given, and each file in a folder given, so that any compiler can do it; with
/// `-runs=N` also for N inputs made from these, which are the same in every run. Says how many there were; none at all
/// is a failure.

#include "fuzz/support/feed.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <span>
#include <stdexcept>
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

std::string bytes_of(fs::path const & path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path.string());
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// Makes inputs of others, by a few changes to one of them.
class mutator {
public:
    explicit mutator(std::vector<std::string> const & inputs) : inputs_(inputs) {}

    std::string next() {
        auto made = below(8) == 0 ? random_bytes(300) : any_input();
        for (auto edits = 1 + below(6); edits > 0; --edits)
            edit(made);
        return made;
    }

private:
    // Not one of the standard distributions, whose numbers are others in each library.
    std::size_t below(std::size_t limit) { return random_() % limit; }
    std::string const & any_input() { return inputs_[below(inputs_.size())]; }

    char byte() {
        static constexpr char telling[] = {0, 1, 2, '\n', '\r', ' ', ':', '\\', '\x7F', '\x80', '\xD8', '\xFF'};
        return below(2) == 0 ? telling[below(std::size(telling))] : static_cast<char>(random_());
    }
    std::string random_bytes(std::size_t most) {
        std::string made(below(most + 1), '\0');
        std::generate(made.begin(), made.end(), [this] { return byte(); });
        return made;
    }

    void edit(std::string & made) {
        auto const at = below(made.size() + 1), count = below(9);
        switch (below(6)) {
        case 0: made.insert(at, random_bytes(8)); break;
        case 1: made.erase(at, count); break;
        case 2: made.insert(at, made, below(made.size() + 1), count * 4); break;
        case 3: made = made.substr(0, at) + any_input().substr(0, 300); break;
        default: made.replace(at, 1, 1, byte());
        }
    }

    std::vector<std::string> const & inputs_;
    std::mt19937 random_;
};

} // namespace

int main(int argc, char ** argv) {
    std::size_t runs = 0;
    std::vector<std::string> inputs;
    // Each is shown before its run, for whoever has to look for the input that ended it.
    for (std::string const argument : std::span(argv + 1, argv + argc)) {
        if (argument.starts_with("-runs=")) {
            runs = std::stoul(argument.substr(6));
            continue;
        }
        for (auto const & path : files_at(argument)) {
            std::cout << path.string() << std::endl;
            inputs.push_back(bytes_of(path));
            fuzz::run(inputs.back());
        }
    }
    if (inputs.empty())
        return 1;
    mutator made(inputs);
    for (std::size_t i = 1; i <= runs; ++i) {
        std::cout << "made " << i << std::endl;
        fuzz::run(made.next());
    }
    std::cout << inputs.size() + runs << " inputs\n";
    return 0;
}
