#pragma once

#include "common/progress.h"
#include "file_record.h"
#include "target_names.h"

#include <socle/nio/file.h>

/// Puts files and folders into a folder of the host, with their forks in one form. Every file is made in a work folder
/// at the top, read back there, and moved into place when it is complete: what has its name there is whole. Nothing
/// that is there already is changed, and nothing goes through a link.
///
/// Failures throw a `nio::exception` or a `un::exception`.
class carrier {
public:
    /// What could not be kept of a file.
    using losses = std::vector<narrow_string>;

    /// The folder is made if it is missing, and taken as the drive `T:` for as long as this lives. Throws also if
    /// another carrier is at work there.
    carrier(narrow_string const & folder, fork_form form);
    carrier(carrier const &) = delete;
    carrier & operator=(carrier const &) = delete;
    ~carrier();

    fork_form form() const { return form_; }
    /// The library's path of the folder.
    static wide_string root() { return u"T:"; }
    /// The name that its top has to be kept free of.
    static wide_string work_name() { return u".catalog.part"; }

    /// Makes `target` a copy of the file. False if it is that already.
    bool carry(file_record const & from, wide_string const & target, progress & shown, losses & lost);

    /// A folder of this name is there then. What `from` says of it is applied when it has its contents.
    void make_folder(wide_string const & target);
    void finish_folder(file_record const & from, wide_string const & target, losses & lost);

private:
    struct volume {
        volume(narrow_string const & folder, fork_form form);
        ~volume();
    };
    /// Removes what is left of the part at the end of a block.
    struct cleaning;

    wide_string work(wide_string const & leaf) const;

    file_record look_at_made(wide_string const & path) const;
    bool same_finder(file_record const & from, file_record const & made) const;
    void check_free(file_record const & from, wide_string const & target) const;
    void check_kept(file_record const & from, file_record const & made, losses & lost) const;

    void make_data() const;
    void make_resource(nio::file & resource) const;
    void copy_streams(file_record const & from, wide_string const & to, losses & lost) const;
    void apply(file_record const & from, wide_string const & to, bool finder) const;
    void remove_part() const;
    void place(wide_string const & target, bool data) const;

    fork_form form_;
    volume volume_;
    wide_string part_;
    nio::file lock_;
};
