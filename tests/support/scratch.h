#pragma once

#include "socle/platform/host.h"
#include "tests/support/system.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A folder for one test, removed with all that is in it.
class scratch {
public:
    explicit scratch(std::filesystem::path const & parent = {}) : folder_(support::make_folder(parent)) {}
    scratch(scratch const &) = delete;
    scratch & operator=(scratch const &) = delete;
    ~scratch() { support::remove_folder(folder_); }

    /// The host's path of a name in the folder, and the library's.
    std::filesystem::path host(std::string const & name) const {
        return (folder_ / support::path_of(name)).make_preferred();
    }
    wide_string path(std::string const & name) const { return platform::from_host(support::text_of(host(name))); }
    std::string folder() const { return support::text_of(folder_); }

    void write(std::string const & name, std::string const & bytes) const {
        std::ofstream out(host(name), std::ios::binary);
        out << bytes;
    }
    std::string read(std::string const & name) const {
        std::ifstream in(host(name), std::ios::binary);
        return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "(none)";
    }
    bool exists(std::string const & name) const { return support::is_there(host(name)); }
    /// The number of entries of a folder in it, or of its own.
    std::size_t entries(std::string const & name = "") const {
        using std::filesystem::directory_iterator;
        return static_cast<std::size_t>(std::distance(directory_iterator(host(name)), directory_iterator()));
    }

private:
    std::filesystem::path folder_;
};
