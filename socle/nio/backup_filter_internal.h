#pragma once

#include "socle/basic/types.h"

#include <vector>

namespace nio {

/// Where the records of a backup come from (`platform/backup.h` has their layout).
class record_source {
public:
    /// Reads the next bytes of the sequence, fewer than `size` only at its end. False if that fails.
    virtual bool read(char * buffer, uint32 size, uint32 & done) = 0;
    /// Skips the data of the record whose head and name have just been read.
    virtual void skip_data() = 0;
    /// Throws what tells of a broken sequence.
    [[noreturn]] virtual void fail(char const * message) = 0;

protected:
    ~record_source() = default;
};

/// Hands on the records of a sequence as one run of bytes, without those that are kept by other means: the file's own
/// data and the two streams of its Macintosh forks. Records without data leave no trace.
class backup_filter {
public:
    /// Fills `buffer`; fewer than `size` bytes only at the end of the sequence. Heads, names and data may be split
    /// between calls.
    ///
    /// Fails with "invalid NTFS stream structure", "invalid NTFS stream name" and "cannot read NTFS stream"; where it
    /// stands is then kept.
    uint32 read(record_source & source, char * buffer, uint32 size);

private:
    bool find_record(record_source & source);
    bool left_out() const;

    std::vector<char> head_; // with the name
    uint32 head_left_ = 0;
    uint64 data_left_ = 0;
    bool ended_ = false;
};

} // namespace nio
