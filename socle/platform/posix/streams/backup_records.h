#pragma once

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/streams/named_streams.h"

#include <cstddef>
#include <vector>

/// The record sequence of backups, see backup.h.
namespace platform::posix {

/// A file that is backed up, and its volume's store if it can have named streams.
struct backup_file {
    int descriptor;
    named_streams const * streams;

    host::at at() const { return host::at(descriptor); }
};

class backup_reader {
public:
    system_code read(backup_file const & file, char * buffer, uint32 size, uint32 & done);
    /// Skips data of the current record. ERROR_SEEK if there is less.
    system_code skip(uint64 size, uint64 & done);

private:
    system_code start(backup_file const & file);
    system_code next_record(backup_file const & file);
    system_code read_data(int own, char * buffer, uint32 size, uint32 & done);
    void set_head(uint32 kind, uint64 size, wide_string const & name);

    bool started_ = false;
    std::vector<wide_string> names_; // of the records still to come, the last first
    bool unnamed_ = false;           // whether the record of the unnamed stream is still to come
    narrow_string head_;             // head and name of the current record
    std::size_t head_done_ = 0;
    descriptor_guard stream_; // the current record's; none for the unnamed one
    uint64 position_ = 0;     // in the current stream
    uint64 left_ = 0;
};

class backup_writer {
public:
    system_code write(backup_file const & file, char const * buffer, uint32 size, uint32 & done);

private:
    bool head_complete() const;
    system_code start_record(backup_file const & file);
    system_code write_data(char const * buffer, uint32 size, uint32 & done);
    system_code finish_record();

    system_code refused_; // why a record could not be started, and nothing behind it can be taken
    narrow_string head_;  // what has come of the current record's head and name
    int target_ = -1;     // what the record's data go to; nothing for what is passed over
    descriptor_guard stream_;
    uint64 position_ = 0;
    uint64 left_ = 0;
};

} // namespace platform::posix
