#pragma once

#include "socle/nio/channel.h"
#include "socle/nio/item.h"

#include <memory>

namespace platform {
struct backup_context;
}

namespace nio {

class backup_filter;

/// A file on disk as source and sink in one: its data fork, its resource fork, a backup of its NTFS streams, or one of
/// the process's standard streams. It holds its path and at most one handle, which the destructor closes.
///
/// Nothing is buffered. Failures throw a `nio::filesystem_exception` with the words told at each operation and the
/// path. Each opening replaces the handle without closing one that is open.
class SOCLE_API file : public item, public channel {
public:
    /// The modes of the constructor.
    enum open_mode : int {
        mode_closed = 0,
        mode_read = 1,
        mode_read_write = 2,
        mode_new = 3,
        mode_anew = 4,
        mode_backup = 5,
        mode_restore = 6,
    };

    /// A closed file with an empty path.
    file();
    /// Stores the path, and opens it by `mode`:
    ///
    /// | mode                | access      | others may  | the file     |
    /// |---------------------|-------------|-------------|--------------|
    /// | 0 `mode_closed`     |             |             |              |
    /// | 1 `mode_read`       | read        | read, write | must exist   |
    /// | 2 `mode_read_write` | read, write | read        | must exist   |
    /// | 3 `mode_new`        | read, write | read        | must not     |
    /// | 4 `mode_anew`       | read, write | read        | is made anew |
    /// | 5 `mode_backup`     | back up     | read        | must exist   |
    /// | 6 `mode_restore`    | restore     | read        | must exist   |
    ///
    /// Throws "cannot open file", but in modes 3 and 4, which leave it closed; for any other mode a `nio::exception`,
    /// "unknown file open mode".
    file(wide_string const & path, int mode);
    file(nio::item const & from, int mode);
    file(file const &) = delete;
    file & operator=(file const &) = delete;
    ~file() override;

    /// Opens the data fork for reading, mode 1.
    void open();
    /// Opens the data fork for reading and writing, mode 2.
    void open_rw();
    /// Opens the resource fork for reading, wherever it lies; the path stays that of the file.
    void open_rsrc();
    /// Opens the resource fork for reading and writing, wherever it lies; the path stays that of the file.
    void open_rsrc_rw();
    /// @{
    /// Takes the process's standard stream, whose name becomes the path. A missing one throws a `nio::exception`,
    /// "cannot open stdin", "cannot open stdout" or "cannot open stderr".
    void open_stdin();
    void open_stdout();
    void open_stderr();
    /// @}
    /// Closes the handle, if there is one. What the system reports then is dropped, although bytes whose writing
    /// succeeded may be lost with it; an `io::open_fork` on the path tells, by `commit()`.
    void close();

    /// Creates and opens the data fork, with all missing parents. True if that worked only under the normalized name,
    /// which then is the path. Throws "cannot create" if that fails too, with the path as it was.
    ///
    /// A failure under a name that is already normal returns false and leaves the file closed.
    bool create(bool overwrite);
    /// Creates and opens the resource fork in the same way: a stream of the file if `allow_ntfs` and the volume has
    /// streams, else a new sidecar. A file that has to be made under the normalized name is never overwritten.
    bool create_rsrc(bool allow_ntfs, bool overwrite);
    /// Creates a file in `directory` under a name made from the clock, once.
    void create_temp(wide_string const & directory);

    /// Whether there is an open handle.
    bool is_open() const { return handle_ != -1; }
    /// The host's descriptor, -1 if closed.
    int handle() const { return handle_; }
    /// Whether this is a terminal or another device of characters.
    bool console() const;

    /// Reads up to `size` bytes and returns the number read; 0 at the end of the file. Throws "cannot read": also at
    /// the end of a pipe, whose writers have gone, with the code 109.
    uint32 read(char * buffer, uint32 size) override;

    using channel::read;
    using channel::write;

    /// Writes all `size` bytes. Throws "cannot write".
    void write(char const * buffer, uint32 size) override;
    /// Does nothing: no bytes are held back.
    void flush() override;

    /// The position in the fork; all ones if closed. Throws "cannot get position".
    uint64 tell() const override;
    /// Moves to `where` in the fork. False if closed, or if the system refuses.
    bool seek(uint64 where) override;
    /// The size of the fork. Throws "cannot determine the size", also if closed.
    uint64 size() const override;
    /// Makes the fork `size` bytes long, with zero bytes. The position stays, or moves to the new end if that is lower.
    /// False if closed, or if the system refuses.
    bool resize(uint64 size);

    /// Deletes the file with its streams and its sidecar; the handle has to be closed. `must_succeed` lets it throw
    /// "cannot delete".
    void unlink(bool must_succeed);

    /// @{
    /// Opens the file to read a backup of its NTFS streams, or to write one (`_w`). `close_ntfs` ends that; the
    /// operations above are not for use in between.
    void open_ntfs();
    void open_ntfs_w();
    /// @}
    /// Reads from a backup of all that the file has beside its data and its Macintosh forks, one run of bytes in the
    /// system's form. Returns fewer than `size` bytes only at its end. Throws "invalid NTFS stream structure", "invalid
    /// NTFS stream name" and "cannot read NTFS stream".
    uint32 read_ntfs(char * buffer, uint32 size);
    /// Writes the bytes that `read_ntfs` delivered, in the same order. Throws "cannot write".
    void write_ntfs(char const * buffer, uint32 size);
    /// Ends the backup and closes the handle.
    void close_ntfs();

private:
    friend class attributes;

    static int try_open(wide_string const & path, int mode);
    static int open_handle(wide_string const & path, int mode);
    void open_fork(int mode);
    void open_standard(uint32 which, char const * name);
    void place_fork(wide_string const & name);
    template <class Open>
    bool create_normalized(Open open);

    int handle_ = -1;
    uint64 fork_offset_ = 0;
    platform::backup_context * backup_ = nullptr;
    std::unique_ptr<backup_filter> filter_;
};

/// Removes a file with its sidecar, or an empty directory. `must_succeed` lets it throw "cannot delete".
SOCLE_API void unlink(wide_string const & path, bool must_succeed);

} // namespace nio
