#pragma once

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/streams/file_rights.h"
#include "socle/platform/system_code.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

/// The named streams of the files on an attached NTFS volume.
namespace platform::posix {

/// Where the host has a stream.
struct stream_place {
    descriptor_guard folder; // with `name` in it; where this is none, `name` is a path
    narrow_string name;
    /// Keeps the streams of the file together while one is opened to be written, or removed.
    descriptor_guard held;

    /// What only streams in the store of our own have to be checked for: their file, the owner of their folder, and
    /// whether that is the one of a file that has gone.
    std::optional<file_rights> rights;
    uid_t owner = 0;
    bool borrowed = false;

    host::at at() const { return {folder.get() < 0 ? AT_FDCWD : folder.get(), name.c_str()}; }
    /// What it is opened with beside its access, so that no link leads away, and nothing waits.
    int flags() const { return O_NONBLOCK | (rights ? O_NOFOLLOW : 0); }
    /// Whether what was opened there is the stream, 5 if not. It gets the owner and the mode that its file asks for.
    system_code admit(int stream) const;
};

constexpr mode_t new_stream_mode = S_IRUSR | S_IWUSR;

/// How one volume keeps the streams of its files and directories.
///
/// A file is inside the volume, and links are followed. The last error is left alone. Objects have no state but the
/// volume's folder, which somebody else keeps open, so any thread may use one at any time.
class named_streams {
public:
    enum class purpose {
        look,   // nothing is changed
        change, // it may be written or removed
        create, // and made
    };

    virtual ~named_streams() = default;

    /// Where the host has stream `name` of `file`. To make it, all is made ready so that opening the place with O_CREAT
    /// does; `file` must exist. Else 2 if the file or the stream cannot be there; opening the place may still find
    /// nothing. 1392 if the file says that it has streams, and they are nowhere.
    virtual system_code locate(host::at const & file, wide_string const & name, purpose wanted,
                               stream_place & place) const = 0;

    /// The names of all streams of `file` but the unnamed one, sorted by unit. None is a success.
    virtual system_code list(host::at const & file, std::vector<wide_string> & names) const = 0;

    /// Lets nobody open or make a stream of `file` to write it while `held` lives; 32 if somebody does. A store that
    /// cannot do that gives nothing.
    virtual system_code hold(host::at const & file, descriptor_guard & held) const = 0;

    /// Tells that a file has moved within the volume; it does no harm if that is lost.
    virtual void moved(host::at const & file) const = 0;

    /// Whether `name`, in the volume's folder (`at_top`) or below it, is where streams are kept: searches leave it out.
    virtual bool hides(std::string_view name, bool at_top) const = 0;

    /// Whether a path, told from the volume's folder on, leads there: no path of the library does.
    bool hides_path(std::string_view below) const;

    /// A folder of streams: open, so that it can still be emptied where no descriptor is left, and where it lies.
    struct belongings {
        descriptor_guard folder;
        descriptor_guard around;
        narrow_string name;
    };
    /// What must go with the last name of `file` (a link is not followed), none if it has no name.
    virtual system_code find_belongings(host::at const & file, belongings & found) const = 0;

    /// Removes what no file claims: see host.h.
    virtual system_code sweep() const = 0;
};

/// Removes the streams, as far as that goes.
host_error remove_belongings(named_streams::belongings const & gone);

/// Chooses the store for a volume, whose folder must stay open as long: the disk's own streams where its driver gives
/// them, else a hidden folder at its top. 50 if the file system can do neither, 5 for something else in the place of
/// that folder.
system_code make_named_streams(held_place const & volume, std::unique_ptr<named_streams> & streams);

/// Opens a stream; `access` is O_RDONLY, O_WRONLY or O_RDWR. One to be written is made if it is missing, and
/// locked: 32.
system_code open_stream(named_streams const & streams, host::at const & file, wide_string const & name, int access,
                        descriptor_guard & stream);

/// Removes a name of a file or folder by `remove`, host::unlink or host::rmdir, and its streams if it was the last one.
/// `streams` is null where there are none.
host_error remove_with_streams(named_streams const * streams, host::at const & file, int (*remove)(host::at const &));

/// Makes every stream of `file` anew at `copy`, which must exist, and syncs each. 32 if somebody writes one; nobody can
/// begin to while `held` lives.
system_code copy_streams(named_streams const & from, host::at const & file, named_streams const & to,
                         host::at const & copy, std::vector<descriptor_guard> & held);

} // namespace platform::posix
