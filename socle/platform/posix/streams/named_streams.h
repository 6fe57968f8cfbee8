#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"

#include <memory>
#include <string_view>
#include <vector>

/// The named streams of the files on an attached NTFS volume.
namespace platform::posix {

/// How one volume keeps the streams of its files and directories.
///
/// A file is inside the volume, and links are followed. The last error is left alone. Objects hold no descriptor and no
/// state but the volume's folder, so any thread may use one at any time.
class named_streams {
public:
    virtual ~named_streams() = default;

    /// The host path by which the ordinary calls open, measure, truncate and remove stream `name` of `file`.
    /// - With `create`, all is made ready so that opening `host` with O_CREAT makes the stream. `file` must exist.
    /// - Without it, 2 if the file or the stream cannot be there; opening `host` may still find nothing.
    virtual system_code locate(host::at const & file, wide_string const & name, bool create,
                               narrow_string & host) const = 0;

    /// The names of all streams of `file` but the unnamed one, sorted by unit. None is a success.
    virtual system_code list(host::at const & file, std::vector<wide_string> & names) const = 0;

    /// Whether `name`, in the volume's folder (`at_top`) or below it, is where streams are kept: searches leave it out.
    virtual bool hides(std::string_view name, bool at_top) const = 0;

    /// Whether a path, told from the volume's folder on, leads there: no path of the library does.
    bool hides_path(std::string_view below) const;

    /// The folder that must go with the last name of `file` (a link is not followed), empty if there is none.
    virtual narrow_string belongings(host::at const & file) const = 0;
};

/// Chooses the store for the volume at `folder`: the disk's own streams where its driver gives them, else a hidden
/// folder at its top. 50 if the file system can do neither.
system_code make_named_streams(narrow_string const & folder, std::unique_ptr<named_streams> & streams);

/// Removes a name of a file or folder by `remove`, host::unlink or host::rmdir, and its streams if it was the last one.
/// `streams` is null where there are none.
host_error remove_with_streams(named_streams const * streams, host::at const & file, int (*remove)(host::at const &));

/// Makes every stream of `file` anew at `copy`, which must exist, and syncs each.
system_code copy_streams(named_streams const & from, host::at const & file, named_streams const & to,
                         host::at const & copy);

} // namespace platform::posix
