#pragma once

#include "io/file.h"
#include "stream/input.h"
#include "stream/output.h"

/// Copies the forks of a file one after the other. On a terminal a bar shows how far it is, for as long as this lives.
class copying {
public:
    /// `total` bytes of the file `name` are to come.
    copying(narrow_string const & name, uint64 total);
    copying(copying const &) = delete;
    copying & operator=(copying const &) = delete;
    ~copying();

    /// Throws an `io::exception` if the source ends before `count` bytes.
    void copy(stream::input & source, stream::output & target, uint64 count);

private:
    void show();

    narrow_string name_;
    uint64 total_;
    uint64 done_ = 0;
    bool visible_;
    int shown_ = -1;
};

/// Closes a fork at the end of a block.
class closing {
public:
    explicit closing(io::fork & fork) : fork_(fork) {}
    closing(closing const &) = delete;
    closing & operator=(closing const &) = delete;
    ~closing() { fork_.close(false); }

private:
    io::fork & fork_;
};
