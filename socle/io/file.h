#pragma once

#include "socle/io/fork.h"
#include "socle/io/item.h"

namespace io {

/// A file with its three forks: the data fork is the file itself, the others are sidecars beside it, if they are there.
/// Copies start with all forks closed, and assignment leaves them as they are.
class SOCLE_API file : public item {
public:
    file();
    /// Refers to `path`; does not access the file system.
    explicit file(any::path const & path);
    file(file const & other);
    /// The same path and attributes.
    explicit file(item const & other);
    file & operator=(file const & other);
    ~file() override;

    /// Creates the data fork, as `io::fork::create`, and leaves it open. No sidecar is made.
    bool create(bool overwrite) override;
    /// Deletes the data fork and fails silently, whatever `report` is. Sidecars stay.
    void unlink(bool report) override;

    /// Whether any of the forks exists.
    bool exists();

    /// The data fork, which belongs to this object.
    io::fork & data_fork() noexcept { return data_; }
    /// The resource fork, which belongs to this object.
    io::fork & rsrc_fork() noexcept { return rsrc_; }
    /// The information fork, which belongs to this object.
    io::fork & info_fork() noexcept { return info_; }

private:
    io::data_fork data_;
    io::info_fork info_;
    io::rsrc_fork rsrc_;
};

} // namespace io
