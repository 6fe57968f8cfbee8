#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"

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

/// The bits of a new file and of a new folder before the process's mask takes some away.
constexpr mode_t new_file_mode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
constexpr mode_t new_folder_mode = S_IRWXU | S_IRWXG | S_IRWXO;

/// Opens a file. The descriptor is closed on exec.
inline descriptor_guard open_descriptor(host::at const & file, int flags, mode_t mode = new_file_mode) {
    return descriptor_guard(host::open(file, flags | O_NOCTTY | O_CLOEXEC, mode));
}

/// A folder that somebody holds open, and where it was then.
struct held_place {
    int folder;
    narrow_string path; // absolute and free of links; empty for the host's root

    /// ENOENT if its place has been taken by something else, a link to it say, or by nothing.
    host_error check() const;
};

bool is_same_file(struct stat const & one, struct stat const & other);

/// Whether somebody else's lock refuses one of this `kind`, LOCK_SH or LOCK_EX. A host without locks refuses nobody.
bool is_locked_out(int file, int kind);

/// Where an open file lies now, as the host tells it: absolute and free of links.
host_error path_of(int file, narrow_string & path);

/// Opens a file with O_PATH and `flags` beside, and tells where it lies.
host_error open_place(host::at const & file, int flags, descriptor_guard & opened, narrow_string & path);

/// The path of a file without the links in it.
host_error real_path(host::at const & file, narrow_string & path);

} // namespace platform::posix
