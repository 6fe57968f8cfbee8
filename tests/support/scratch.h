#pragma once

#include "socle/platform/host.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

/// A folder for one test, on a disk that keeps extended attributes, and removed with all that is in it.
class scratch {
public:
    explicit scratch(std::string pattern = "/var/tmp/socle_test_XXXXXX") {
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("no folder can be made for " + pattern);
        folder_ = std::filesystem::canonical(pattern);
    }
    scratch(scratch const &) = delete;
    scratch & operator=(scratch const &) = delete;
    ~scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    /// The host's path of a name in the folder, and the library's.
    std::string host(std::string const & name) const { return folder_.string() + '/' + name; }
    wide_string path(std::string const & name) const { return platform::from_host(host(name)); }
    std::string folder() const { return folder_.string(); }

    void write(std::string const & name, std::string const & bytes) const {
        std::ofstream out(host(name), std::ios::binary);
        out << bytes;
    }
    std::string read(std::string const & name) const {
        std::ifstream in(host(name), std::ios::binary);
        return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "(none)";
    }
    bool exists(std::string const & name) const {
        struct stat status {};
        return lstat(host(name).c_str(), &status) == 0;
    }

private:
    std::filesystem::path folder_;
};
