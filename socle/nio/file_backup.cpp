#include "socle/nio/backup_filter_internal.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/platform/backup.h"

namespace nio {

namespace {

/// The records that the system makes of an open file.
class file_records : public record_source {
public:
    file_records(int handle, platform::backup_context *& context, wide_string const & path)
        : handle_(handle), context_(context), path_(path) {}

    bool read(char * buffer, uint32 size, uint32 & done) override {
        return platform::BackupRead(handle_, buffer, size, done, false, context_);
    }
    void skip_data() override {
        // As far as it goes: to the end of the record's data.
        uint64 done = 0;
        platform::BackupSeek(handle_, 0x7FFFFFFFFFFFFFFF, done, context_);
    }
    [[noreturn]] void fail(char const * message) override { throw filesystem_exception(message, path_); }

private:
    int handle_;
    platform::backup_context *& context_;
    wide_string const & path_;
};

} // namespace

void file::open_ntfs() {
    fork_offset_ = 0;
    handle_ = open_handle(path(), mode_backup);
}

void file::open_ntfs_w() {
    fork_offset_ = 0;
    handle_ = open_handle(path(), mode_restore);
}

uint32 file::read_ntfs(char * buffer, uint32 size) {
    if (!filter_)
        filter_ = std::make_unique<backup_filter>();
    file_records records(handle_, backup_, path());
    return filter_->read(records, buffer, size);
}

void file::write_ntfs(char const * buffer, uint32 size) {
    uint32 done = 0;
    if (size > 0 && !platform::BackupWrite(handle_, buffer, size, done, backup_))
        throw filesystem_exception("cannot write", path());
}

void file::close_ntfs() {
    uint32 done = 0;
    char byte;
    platform::BackupRead(handle_, &byte, 0, done, true, backup_);
    backup_ = nullptr;
    filter_.reset();
    close();
}

} // namespace nio
