#include "socle/platform/backup.h"

#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/volumes.h"
#include "socle/platform/posix/streams/backup_records.h"

#include <cerrno>
#include <climits>
#include <string>

namespace platform {

struct backup_context {
    posix::backup_reader reader;
    posix::backup_writer writer;
};

namespace {

/// Finds where an open file lies now, and so the store of its named streams.
uint32 find_file(int descriptor, posix::backup_file & file) {
    file = {descriptor, {}, nullptr};
    if (!posix::any_attached())
        return 0;
    char path[PATH_MAX];
    narrow_string const link = "/proc/self/fd/" + std::to_string(descriptor);
    ssize_t const size = posix::host::readlink(link, path, sizeof path);
    if (size < 0)
        return posix::code_of(errno == ENOENT ? EBADF : errno);
    file.path.assign(path, static_cast<std::size_t>(size));
    if (file.path.starts_with('/'))
        file.streams = posix::volume_at(file.path).streams.get();
    return 0;
}

/// Runs a step of a backup, which gives a system code.
template <typename Step>
bool run(int descriptor, backup_context *& context, Step step) {
    if (context == nullptr)
        context = new backup_context;
    posix::backup_file file{};
    uint32 const code = find_file(descriptor, file);
    return posix::report(code != 0 ? code : step(file));
}

} // namespace

bool BackupRead(int file, char * buffer, uint32 size, uint32 & done, bool abort, backup_context *& context) {
    done = 0;
    if (abort) {
        delete context;
        context = nullptr;
        return true;
    }
    return run(file, context,
               [&](posix::backup_file const & source) { return context->reader.read(source, buffer, size, done); });
}

bool BackupSeek(int file, uint64 size, uint64 & done, backup_context *& context) {
    done = 0;
    return run(file, context, [&](posix::backup_file const &) { return context->reader.skip(size, done); });
}

bool BackupWrite(int file, char const * buffer, uint32 size, uint32 & done, backup_context *& context) {
    done = 0;
    return run(file, context,
               [&](posix::backup_file const & target) { return context->writer.write(target, buffer, size, done); });
}

void EnableBackupPrivileges() {}

} // namespace platform
