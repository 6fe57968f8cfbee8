#pragma once

#include "io/file.h"
#include "stream/input.h"
#include "stream/output.h"

/// Copies the forks of one file after the other, and shows on a terminal how far it is.
class copying {
public:
    copying();
    /// Erases the bar.
    ~copying();

    /// What is to come: the next file's name, and the bytes of all its forks.
    void start(narrow_string const & name, uint64 total);

    /// Throws an `io::exception` if the source ends before `count` bytes.
    void copy(stream::input & source, stream::output & target, uint64 count);

private:
    void show();

    io::file errors_;
    bool visible_;
    narrow_string name_;
    uint64 total_ = 0;
    uint64 done_ = 0;
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
