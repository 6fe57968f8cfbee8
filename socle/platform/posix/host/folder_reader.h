#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"

#include <array>

namespace platform::posix {

/// Reads the entries of an open folder from where its descriptor stands, "." and ".." left out.
class folder_reader {
public:
    explicit folder_reader(int folder) : folder_(folder) {}
    folder_reader(folder_reader const &) = delete;
    folder_reader & operator=(folder_reader const &) = delete;

    /// The next entry; null at the end, and on failure. It lasts until the next call.
    dirent64 const * next();
    /// Why it ended early.
    host_error error() const { return error_; }

private:
    static constexpr std::size_t block_size = 32768;
    int folder_;
    alignas(dirent64) std::array<char, block_size> block_; // what the host has filled is read, and no more
    std::size_t at_ = 0;
    std::size_t end_ = 0;
    host_error error_;
};

} // namespace platform::posix
