#pragma once

#include "socle/io/file.h"
#include "socle/platform/host.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace bench {

/// A folder for the files of a run, removed at its end.
class scratch {
public:
    static scratch const & folder() {
        static scratch const one;
        return one;
    }

    ~scratch() { std::filesystem::remove_all(root_); }

    std::filesystem::path path(std::string const & name) const { return root_ / name; }

    /// The path of a file of these bytes, made anew.
    std::string file(std::string const & name, std::string const & bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name).string();
    }

private:
    scratch() : root_(std::filesystem::temp_directory_path() / ("socle_bench_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(root_);
    }

    std::filesystem::path root_;
};

/// A descriptor of the host.
class host_file {
public:
    host_file(std::string const & path, int flags) : handle_(open(path.c_str(), flags, 0666)) {
        if (handle_ < 0)
            std::abort();
    }
    host_file(host_file const &) = delete;
    host_file & operator=(host_file const &) = delete;
    ~host_file() { close(handle_); }
    operator int() const { return handle_; }

private:
    int handle_;
};

/// The library's file of a host's path.
inline io::file file_at(std::string const & host_path) {
    return io::file(any::path(any::string(platform::from_host(host_path)), true));
}

} // namespace bench
