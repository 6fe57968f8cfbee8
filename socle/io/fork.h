#pragma once

#include "socle/any/path.h"

namespace io {

class file;

/// A handle of the system, which it does not own.
class descriptor {
public:
    descriptor() = default;
    /// Holds the number, and owns nothing.
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

/// One fork of a file: an unbuffered handle with bytes and positions. It reads the path of its file whenever it needs
/// it. Whoever opens a fork closes it: the destructor does not, nor does an opening close what was open.
///
/// Failures throw an `io::exception` with the system's code: the words told at each operation and the fork's path.
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

    /// "cannot open".
    virtual void open();
    /// "cannot open_rw".
    virtual void open_rw();
    /// Makes and opens the fork, in place of one that exists if `overwrite`. Where that fails it is tried under the
    /// normalized name of the file, made unique if it is taken, as a new fork: true if that worked, and the name is the
    /// file's then. Throws "cannot create", with the name as it was.
    virtual bool create(bool overwrite);
    /// A standard stream of the process: "cannot open stdin", "cannot open stdout", "cannot open stderr".
    virtual void open_stdin();
    virtual void open_stdout();
    virtual void open_stderr();
    /// "cannot close", if `report`; the fork is closed in any case.
    virtual void close(bool report);
    /// Whether this is a terminal or another device of characters.
    virtual bool console();

    /// Up to `count` bytes; 0 at the end. "cannot read from".
    virtual uint32 read(char * buffer, uint32 count);
    /// "cannot write to".
    virtual void write(char const * data, uint32 count);
    /// Of a closed fork as well; 0 if it cannot be had. "cannot determine the size of" an open one.
    virtual uint64 size();
    /// All ones if closed. "cannot get position of".
    virtual uint64 tell();
    /// False if closed. "cannot set the position of".
    virtual bool seek(uint64 position);
    /// Makes the fork shorter or longer; the position stays, or moves to the new end if that is lower.
    /// "cannot resize".
    virtual void resize(uint64 size);
    /// "cannot flush", if `report`.
    virtual void flush(bool report);
    /// Closes and deletes. "cannot delete", if `report`.
    virtual void unlink(bool report);

    /// Where the fork lies; the empty path for a file without a name.
    virtual any::path fork_name() const = 0;

    /// Whether there is anything where the fork would lie.
    bool exists();
    /// The open handle, or an invalid one.
    io::descriptor descriptor() const noexcept { return descriptor_; }

protected:
    /// An invalid result is a failure. "unknown fork open mode".
    io::descriptor _open(open_mode mode);

    /// The file that this is a fork of.
    io::file & file() const noexcept { return file_; }

private:
    void open_standard(uint32 which, char const * message);
    void raise(char const * message) const;

    io::file & file_;
    io::descriptor descriptor_;
};

/// The file itself.
class SOCLE_API data_fork : public fork {
public:
    /// A fork of `file`, closed.
    explicit data_fork(io::file & file);
    data_fork(data_fork const &);
    ~data_fork() override;
    any::path fork_name() const override;
};

/// A file beside it, with ".rsrc" behind its leaf.
class SOCLE_API rsrc_fork : public fork {
public:
    /// A fork of `file`, closed.
    explicit rsrc_fork(io::file & file);
    rsrc_fork(rsrc_fork const &);
    ~rsrc_fork() override;
    any::path fork_name() const override;
};

/// A file beside it, with ".info" behind its leaf.
class SOCLE_API info_fork : public fork {
public:
    /// A fork of `file`, closed.
    explicit info_fork(io::file & file);
    info_fork(info_fork const &);
    ~info_fork() override;
    any::path fork_name() const override;
};

} // namespace io
