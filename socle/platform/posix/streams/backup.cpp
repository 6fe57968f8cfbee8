#include "socle/platform/backup.h"

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/volumes.h"
#include "socle/platform/posix/streams/backup_records.h"

namespace platform {

struct backup_context {
    posix::backup_reader reader;
    posix::backup_writer writer;
};

namespace {

/// Finds where an open file lies now, and so the store of its named streams.
system_code find_file(int descriptor, posix::backup_file & file) {
    file = {descriptor, nullptr};
    if (!posix::any_attached())
        return {};
    narrow_string path;
    if (posix::host_error const error = posix::path_of(descriptor, path))
        return error == ENOENT ? ERROR_INVALID_HANDLE : posix::code_of(error);
    if (path.starts_with('/'))
        file.streams = posix::volume_at(path).streams.get();
    return {};
}

/// Whether a handle was opened to be read, or to be written. A folder that was opened to be written cannot be read.
system_code check_access(int descriptor, bool writes) {
    int const flags = posix::host::status_flags(descriptor);
    if (flags < 0)
        return posix::last_code();
    bool const path = (flags & O_PATH) != 0;
    bool const fits = writes ? path || (flags & O_ACCMODE) != O_RDONLY : !path && (flags & O_ACCMODE) != O_WRONLY;
    return fits ? system_code() : ERROR_ACCESS_DENIED;
}

/// Runs a step of a backup, which gives a system code.
template <typename Step>
bool run(int descriptor, bool writes, backup_context *& context, Step step) {
    if (context == nullptr)
        context = new backup_context;
    posix::backup_file file{};
    system_code code = check_access(descriptor, writes);
    if (!code)
        code = find_file(descriptor, file);
    return posix::report(code ? code : step(file));
}

} // namespace

bool BackupRead(int file, char * buffer, uint32 size, uint32 & done, bool abort, backup_context *& context) {
    done = 0;
    if (abort) {
        delete context;
        context = nullptr;
        return true;
    }
    return run(file, false, context,
               [&](posix::backup_file const & source) { return context->reader.read(source, buffer, size, done); });
}

bool BackupSeek(int file, uint64 size, uint64 & done, backup_context *& context) {
    done = 0;
    return run(file, false, context, [&](posix::backup_file const &) { return context->reader.skip(size, done); });
}

bool BackupWrite(int file, char const * buffer, uint32 size, uint32 & done, backup_context *& context) {
    done = 0;
    return run(file, true, context,
               [&](posix::backup_file const & target) { return context->writer.write(target, buffer, size, done); });
}

void EnableBackupPrivileges() {}

} // namespace platform
