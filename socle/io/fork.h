#pragma once

#include "socle/any/path.h"

namespace io {

class file;

/// A handle of the system, which it does not own.
class descriptor {
public:
    descriptor() = default;
    /// Refers to a handle.
    descriptor(int handle) : handle_(handle) {}

    /// Whether there is a handle.
    bool valid() const noexcept { return handle_ != none; }
    /// Forgets the handle.
    void reset() noexcept { handle_ = none; }
    /// The host's number.
    operator int() const noexcept { return handle_; }

private:
    static constexpr int none = -1;

    int handle_ = none;
};

/// One fork of a file, unbuffered. It reads the path of its file whenever it needs it. Whoever opens a fork closes it:
/// the destructor does not, nor does opening close what was open.
///
/// Failures throw an `io::exception` with the system's code, the words in quotes at each operation and the fork's path.
class SOCLE_API fork {
public:
    /// How `_open` opens: for reading beside others that read and write; the rest for reading and writing, beside
    /// others that read.
    enum open_mode { open_read, open_read_write, create_new, create_always };

    /// A fork of `file`, which has to outlive it; closed.
    explicit fork(io::file & file);
    /// Shares the handle's number.
    fork(fork const &);
    fork & operator=(fork const &) = delete;
    virtual ~fork();

    /// Opens for reading. "cannot open".
    virtual void open();
    /// Opens for reading and writing. "cannot open_rw".
    virtual void open_rw();
    /// Creates and opens the fork; with `overwrite` it replaces one that exists. If that fails, it tries again under
    /// the normalized name of the file, made unique if it is taken, as a new fork. True if that worked; the file then
    /// has that name. Throws "cannot create", with the name as it was.
    virtual bool create(bool overwrite);
    /// Opens the standard input of the process. "cannot open stdin".
    virtual void open_stdin();
    /// Opens the standard output of the process. "cannot open stdout".
    virtual void open_stdout();
    /// Opens the standard error output of the process. "cannot open stderr".
    virtual void open_stderr();
    /// Closes the fork, also where the system reports a failure. "cannot close", if `report`. A failure means that
    /// bytes may be lost whose writing succeeded. Before an answer counts as safe, flush the streams above, from the
    /// top down, then call `flush(true)`, then `close(true)`: `io::open_fork::commit` does both.
    virtual void close(bool report);
    /// Whether this is a terminal or another device of characters.
    virtual bool console();

    /// Reads up to `count` bytes and returns the number read; 0 at the end. "cannot read from".
    virtual uint32 read(char * buffer, uint32 count);
    /// Writes all `count` bytes. "cannot write to".
    virtual void write(char const * data, uint32 count);
    /// The size of the fork, open or closed. Of a closed one 0 if it cannot be had; of an open one "cannot determine
    /// the size of".
    virtual uint64 size();
    /// The position; all ones if closed. "cannot get position of".
    virtual uint64 tell();
    /// Moves to `position`; false if closed. "cannot set the position of".
    virtual bool seek(uint64 position);
    /// Makes the fork shorter or longer; the position stays, or moves to the new end if that is lower.
    /// "cannot resize".
    virtual void resize(uint64 size);
    /// Writes what the system holds back to the disk. "cannot flush", if `report`.
    virtual void flush(bool report);
    /// Closes and deletes. "cannot delete", if `report`.
    virtual void unlink(bool report);

    /// The path of the fork; the empty path for a file without a name.
    virtual any::path fork_name() const = 0;

    /// Whether there is anything where the fork would lie.
    bool exists();
    /// The open handle, or an invalid one.
    io::descriptor descriptor() const noexcept { return descriptor_; }

protected:
    /// Opens and returns the handle, which is invalid after a failure. "unknown fork open mode".
    io::descriptor _open(open_mode mode);

    /// The file that this is a fork of.
    io::file & file() const noexcept { return file_; }

private:
    void open_standard(uint32 which, char const * message);
    void raise(char const * message) const;

    io::file & file_;
    io::descriptor descriptor_;
};

/// The data fork: the file itself.
class SOCLE_API data_fork : public fork {
public:
    /// A fork of `file`, closed.
    explicit data_fork(io::file & file);
    data_fork(data_fork const &);
    ~data_fork() override;
    /// The path of the file itself.
    any::path fork_name() const override;
};

/// The resource fork: a file beside it, with ".rsrc" behind its leaf.
class SOCLE_API rsrc_fork : public fork {
public:
    /// A fork of `file`, closed.
    explicit rsrc_fork(io::file & file);
    rsrc_fork(rsrc_fork const &);
    ~rsrc_fork() override;
    /// The path of the file, with ".rsrc" behind the leaf.
    any::path fork_name() const override;
};

/// The information fork: a file beside it, with ".info" behind its leaf.
class SOCLE_API info_fork : public fork {
public:
    /// A fork of `file`, closed.
    explicit info_fork(io::file & file);
    info_fork(info_fork const &);
    ~info_fork() override;
    /// The path of the file, with ".info" behind the leaf.
    any::path fork_name() const override;
};

} // namespace io
