#pragma once

#include "socle/platform/posix/host/host_calls.h"

#include <memory>
#include <utility>

namespace platform::posix {

/// Closes a host descriptor when it goes.
class descriptor_guard {
public:
    explicit descriptor_guard(int descriptor = -1) : descriptor_(descriptor) {}
    descriptor_guard(descriptor_guard && other) noexcept : descriptor_(other.release()) {}
    descriptor_guard & operator=(descriptor_guard && other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~descriptor_guard() {
        if (descriptor_ >= 0)
            host::close(descriptor_);
    }

    int get() const { return descriptor_; }
    int release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_;
};

struct folder_closer {
    void operator()(DIR * folder) const { host::closedir(folder); }
};
/// A folder that is read.
using folder_guard = std::unique_ptr<DIR, folder_closer>;

/// The bits of a new file before the process's mask takes some away.
constexpr mode_t everyone = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

/// Opens a file. The descriptor is closed on exec.
inline descriptor_guard open_descriptor(narrow_string const & path, int flags, mode_t mode = everyone) {
    return descriptor_guard(host::open(path, flags | O_NOCTTY | O_CLOEXEC, mode));
}

} // namespace platform::posix
