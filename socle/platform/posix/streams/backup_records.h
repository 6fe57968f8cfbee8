#pragma once

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/streams/named_streams.h"

#include <cstddef>
#include <vector>

/// The record sequence of backups, see backup.h; each result is 0 or a system code.
namespace platform::posix {

/// A file that is backed up: its descriptor, and if it can have named streams its path and its volume's store.
struct backup_file {
    int descriptor;
    narrow_string path;
    named_streams const * streams;
};

class backup_reader {
public:
    uint32 read(backup_file const & file, char * buffer, uint32 size, uint32 & done);
    /// Skips data of the current record. ERROR_SEEK if there is less.
    uint32 skip(uint64 size, uint64 & done);

private:
    uint32 start(backup_file const & file);
    uint32 next_record(backup_file const & file);
    uint32 read_data(int own, char * buffer, uint32 size, uint32 & done);
    void set_head(uint32 kind, uint64 size, wide_string const & name);

    bool started_ = false;
    std::vector<wide_string> names_; // of the records still to come, the last first
    bool own_data_ = false;          // whether the record of the unnamed stream is still to come
    narrow_string head_;             // head and name of the current record
    std::size_t head_done_ = 0;
    descriptor_guard stream_; // the current record's; none for the unnamed one
    uint64 position_ = 0;     // in the current stream
    uint64 left_ = 0;
};

class backup_writer {
public:
    uint32 write(backup_file const & file, char const * buffer, uint32 size, uint32 & done);

private:
    bool head_complete() const;
    uint32 start_record(backup_file const & file);
    uint32 write_data(char const * buffer, uint32 size, uint32 & done);
    uint32 finish_record();

    uint32 refused_ = 0; // why a record could not be started, and nothing behind it can be taken
    narrow_string head_; // what has come of the current record's head and name
    int target_ = -1;    // what the record's data go to; nothing for what is passed over
    descriptor_guard stream_;
    uint64 position_ = 0;
    uint64 left_ = 0;
};

} // namespace platform::posix
