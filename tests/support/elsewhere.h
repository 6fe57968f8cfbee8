#pragma once

#include "tests/support/scratch.h"

/// A folder on another file system of the host than the one for tests.
class elsewhere {
public:
    elsewhere() {
        char pattern[] = "/dev/shm/socle_test_XXXXXX";
        if (char const * const made = mkdtemp(pattern))
            folder_ = made;
    }
    elsewhere(elsewhere const &) = delete;
    elsewhere & operator=(elsewhere const &) = delete;
    ~elsewhere() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    bool differs_from(scratch const & folder) const {
        struct stat here {
        }, there{};
        return stat(folder.folder().c_str(), &here) == 0 && stat(folder_.c_str(), &there) == 0
               && here.st_dev != there.st_dev;
    }
    std::string folder() const { return folder_; }
    std::string host(std::string const & name) const { return folder_ + "/" + name; }
    wide_string path(std::string const & name) const { return platform::from_host(host(name)); }
    std::size_t entries() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder_), std::filesystem::directory_iterator()));
    }

private:
    std::string folder_;
};
