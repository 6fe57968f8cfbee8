#pragma once

#include "forked_copy.h"
#include "target_folder.h"

/// The folder at the top of a target in which files are made before they are moved into place. One program at a time
/// has it, and what is in it goes with it.
class work_folder {
public:
    /// Takes it, made if it is missing, and clears it of what an earlier run was at. Throws if another run has it, or
    /// if something in it, or in its place, was not made by this program.
    work_folder(target_folder const & top, fork_form form);
    work_folder(work_folder const &) = delete;
    work_folder & operator=(work_folder const &) = delete;
    ~work_folder();

    /// Whether it has this name.
    static bool is_named(wide_string const & leaf);

    /// The library's path for a file to be made.
    wide_string next_part();
    /// Brings all that is in it to the disk.
    void sync() const { here_->held()->sync(); }
    /// Moves a file made here to a name that nothing has in `folder`.
    void move(wide_string const & part, target_folder const & folder, narrow_string const & name) const;

private:
    void clear() const;

    target_folder const & top_;
    fork_form form_;
    std::optional<host::lock> lock_;
    std::optional<target_folder> here_;
    uint64 parts_ = 0;
};
