#pragma once

#include <socle/io/file.h>

#include <vector>

/// A file in the making, under a name of its own in the folder where it is to be. It goes again, unless it is placed.
class part {
public:
    explicit part(any::path const & folder);
    part(part const &) = delete;
    part & operator=(part const &) = delete;
    ~part();

    io::file & file() { return file_; }

    /// Makes the fork, which is open then. Throws an `io::exception` if there is anything of that name.
    void make(io::fork & fork);

    /// Closes all forks. Throws an `io::exception` if that fails.
    void close();

    /// Moves all forks to the name of `target`, the one made first coming last: when it is there, all is.
    /// Throws an `io::exception` if there is anything of these names; nothing has moved then.
    void place(io::file & target);

private:
    io::file file_;
    std::vector<io::fork *> made_;
};

/// The name `leaf` in the folder or, if it cannot be had, one like it: without what no file system takes, and such that
/// no fork of any file lies under it, nor under the names of its own forks.
io::file free_name(any::path const & folder, any::string const & leaf);
