#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"

#include <array>
#include <memory>

namespace platform::posix {

/// Reads the entries of an open folder from where its descriptor stands, "." and ".." left out.
class folder_reader {
public:
    explicit folder_reader(int folder) : folder_(folder) {}

    /// The next entry; null at the end, and on failure. It lasts until the next call.
    dirent64 const * next();
    /// Why it ended early.
    host_error error() const { return error_; }

private:
    static constexpr std::size_t block_size = 32768;
    struct alignas(dirent64) block : std::array<char, block_size> {};

    int folder_;
    std::unique_ptr<block> const block_ = std::make_unique_for_overwrite<block>();
    std::size_t at_ = 0;
    std::size_t end_ = 0;
    host_error error_;
};

} // namespace platform::posix
