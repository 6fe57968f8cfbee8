#pragma once

#include "common/progress.h"

#include <socle/stream/input.h>
#include <socle/stream/output.h>

/// Copies the forks of a file one after the other, and shows how far it is.
class copying {
public:
    /// `total` bytes of the file `name` are to come.
    copying(narrow_string const & name, uint64 total);

    /// Throws an `io::exception` if the source ends before `count` bytes.
    void copy(stream::input & source, stream::output & target, uint64 count);

private:
    narrow_string name_;
    progress progress_;
};
