#pragma once

#include "tests/support/scratch.h"

#include <sys/stat.h>

/// A folder on another file system of the host than the one for tests.
class elsewhere : public scratch {
public:
    elsewhere() : scratch("/dev/shm") {}

    bool differs_from(scratch const & other) const {
        struct stat here {
        }, there{};
        return stat(folder().c_str(), &here) == 0 && stat(other.folder().c_str(), &there) == 0
               && here.st_dev != there.st_dev;
    }
};
