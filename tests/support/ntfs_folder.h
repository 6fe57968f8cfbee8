#pragma once

#include "tests/support/scratch.h"

/// A folder that is also the NTFS volume `N:`, if the file system can keep streams.
class ntfs_folder : public scratch {
public:
    ntfs_folder() : attached_(platform::attach_volume('N', folder(), "NTFS") == 0) {}
    ~ntfs_folder() {
        if (attached_)
            platform::detach_volume('N');
    }
    bool attached() const { return attached_; }

private:
    bool attached_;
};
