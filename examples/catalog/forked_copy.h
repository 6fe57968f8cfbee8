#pragma once

#include "file_record.h"
#include "target_names.h"

#include "common/progress.h"

/// A file in the making, with its forks in one form, at a path of the library where nothing else is. Failures throw a
/// `nio::exception` or a `un::exception`.
class forked_copy {
public:
    forked_copy(fork_form form, wide_string const & path) : form_(form), path_(path) {}

    wide_string const & path() const { return path_; }

    /// Makes it a copy of the file, with its dates and attribute bits.
    void make(file_record const & from, progress & shown) const;
    /// Makes only what a folder has beside itself.
    void make_beside(file_record const & from) const;
    /// Removes what there is of it.
    void remove() const;

private:
    void make_data(file_record const & from, progress & shown) const;
    void make_resource(file_record const & from, progress & shown) const;

    fork_form form_;
    wide_string path_;
};

/// What is to be done for folders, too, where they are.
void apply_attributes(fork_form form, file_record const & from, wide_string const & to, bool finder);
/// Streams that are no forks: whether there are any, and a copy of them all.
bool has_streams(file_record const & file);
void copy_streams(file_record const & from, wide_string const & to);

/// Looks at what stands at `path`, with the forks that it has in this form. Throws also if they cannot be read.
file_record look_at_made(fork_form form, wide_string const & path);
/// The same where its status is known, and whether there may be any in files beside it.
file_record look_at_made(fork_form form, wide_string const & path, host::status const & status, bool forks);

/// Whether `made` is a copy of `from`: each byte of each fork, and of each stream if the form has them.
bool same_contents(fork_form form, file_record const & from, file_record const & made);
/// Whether it has the Finder information that this form can hold.
bool same_finder(fork_form form, file_record const & from, file_record const & made);
