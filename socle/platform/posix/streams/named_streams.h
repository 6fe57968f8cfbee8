#pragma once

#include "socle/basic/types.h"

#include <memory>
#include <string_view>
#include <vector>

/// The named streams of the files on an attached NTFS volume.
namespace platform::posix {

/// How one volume keeps the streams of its files and directories.
///
/// A file is given as its absolute host path inside the volume and links in it are followed. Results are 0 or a system
/// code; the last error is left alone. Objects hold no descriptor and no state but the volume's folder, so any thread
/// may use one at any time.
class named_streams {
public:
    virtual ~named_streams() = default;

    /// The host path by which the ordinary calls open, measure, truncate and remove stream `name` of `file`.
    /// - With `create`, all is made ready so that opening `host` with O_CREAT makes the stream. `file` must exist.
    /// - Without it, 2 if the file or the stream cannot be there; opening `host` may still find nothing.
    virtual uint32 locate(narrow_string const & file, wide_string const & name, bool create,
                          narrow_string & host) const = 0;

    /// The names of all streams of `file` but the unnamed one, sorted by unit. None is a success.
    virtual uint32 list(narrow_string const & file, std::vector<wide_string> & names) const = 0;

    /// Whether `host` is the place where the streams are kept, or lies in it: searches leave it out, and no path of the
    /// library leads there.
    virtual bool hidden(narrow_string const & host) const = 0;

    /// The folder that must go with the last name of `file` (a link is not followed), empty if there is none.
    virtual narrow_string belongings(narrow_string const & file) const = 0;
};

/// Chooses the store for the volume at `folder`: the disk's own streams where its driver gives them, else a hidden
/// folder at its top. 50 if the file system can do neither.
uint32 make_named_streams(narrow_string const & folder, std::unique_ptr<named_streams> & streams);

/// Takes the streams along when a file or directory is removed: made before its name is removed, told afterwards.
///
///     stream_removal removal(streams, path);
///     if (unlink(path) == 0)
///         removal.name_removed();
class stream_removal {
public:
    stream_removal(named_streams const & streams, narrow_string const & file);
    stream_removal(stream_removal const &) = delete;
    stream_removal & operator=(stream_removal const &) = delete;
    ~stream_removal();

    /// Removes the streams if that was the last name of the file.
    void name_removed();

private:
    int file_ = -1;
    narrow_string belongings_;
};

/// Makes every stream of `file` anew at `copy`, which must exist, and syncs each.
uint32 copy_streams(named_streams const & from, narrow_string const & file, named_streams const & to,
                    narrow_string const & copy);

} // namespace platform::posix
