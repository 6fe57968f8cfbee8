#pragma once

#include "tests/support/scratch.h"

/// A folder that is also the NTFS volume `N:`, if its file system can keep streams.
class ntfs_folder : public scratch {
public:
    ntfs_folder() : attached_(platform::attach_volume('N', folder(), "NTFS") == 0) {}
    ~ntfs_folder() {
        if (attached_)
            platform::detach_volume('N');
    }
    bool attached() const { return attached_; }
    /// What is missing if it is not.
    static constexpr char const * limit = "the file system of the folder for tests keeps no named streams";

private:
    bool attached_;
};
