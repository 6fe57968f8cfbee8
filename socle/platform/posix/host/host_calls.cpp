#include "socle/platform/posix/host/host_calls.h"

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <string>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/xattr.h>

namespace platform::posix::host {

int (*fault)(char const * call) = nullptr;

namespace {

int asked(char const * call) {
    int const answer = fault != nullptr ? fault(call) : 0;
    if (answer > 0)
        errno = answer;
    return answer;
}

/// A file for calls that take no open folder, or none without a name in it: by the link that stands for a descriptor,
/// which leads to what is open, whatever has become of its name.
class linked {
public:
    linked(at const & file, bool takes_folder) : folder_(file.folder()), name_(file.name()) {
        if (file.is_path() || (takes_folder && !file.is_descriptor()))
            return;
        path_ = "/proc/self/fd/" + std::to_string(folder_);
        if (!file.is_descriptor())
            (path_ += '/') += name_;
        folder_ = AT_FDCWD;
        name_ = path_.c_str();
    }
    linked(linked const &) = delete;
    linked & operator=(linked const &) = delete;

    int folder() const { return folder_; }
    char const * name() const { return name_; }

private:
    narrow_string path_;
    int folder_;
    char const * name_;
};

/// The number of a later call of the kernel, which counts alike on all machines, but not from the same start.
constexpr long call_number(long number) { return number - 434 + SYS_pidfd_open; }

/// Whether the kernel reads the extended attributes of a name in an open folder (6.13). Going there by the link that
/// stands for the folder takes three times as long.
bool has_attribute_calls(at const & file) {
    static bool const has = ::syscall(call_number(465), AT_FDCWD, "/", 0, nullptr, 0) >= 0;
    return !file.is_path() && !file.is_descriptor() && has;
}

ssize_t attribute_of(at const & file, char const * name, void * value, std::size_t size) {
    if (has_attribute_calls(file)) {
        struct {
            alignas(8) uint64 value;
            uint32 size;
            uint32 flags;
        } arguments{reinterpret_cast<std::uintptr_t>(value), static_cast<uint32>(size), 0};
        return ::syscall(call_number(464), file.folder(), file.name(), 0, name, &arguments, sizeof arguments);
    }
    return ::getxattr(linked(file, false).name(), name, value, size);
}

bool fails(char const * call) { return asked(call) > 0; }

/// Makes a call again where a signal interrupts it.
template <class Call>
auto retried(char const * name, Call call) -> decltype(call()) {
    for (;;) {
        auto const result = fails(name) ? -1 : call();
        if (result != -1 || errno != EINTR)
            return result;
    }
}

/// Reads or writes `size` bytes, or fewer, by `call`, which takes their number.
template <class Call>
ssize_t transferred(char const * name, std::size_t size, Call call) {
    for (;;) {
        int const answer = asked(name);
        ssize_t const result = answer > 0 ? -1 : call(answer == half ? (size + 1) / 2 : size);
        if (result != -1 || errno != EINTR)
            return result;
    }
}

ssize_t write_without_signal(int file, void const * buffer, std::size_t size) {
    ssize_t const sent = ::send(file, buffer, size, MSG_NOSIGNAL);
    if (sent >= 0 || errno != ENOTSOCK)
        return sent;
    // The signal goes to this thread: it is held back while the call runs, and taken away unless it was there before.
    sigset_t pipe_signal;
    sigset_t before;
    sigset_t pending;
    sigemptyset(&pipe_signal);
    sigaddset(&pipe_signal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_signal, &before);
    sigpending(&pending);
    ssize_t const written = ::write(file, buffer, size);
    int const error = errno;
    if (written < 0 && error == EPIPE && sigismember(&pending, SIGPIPE) == 0) {
        timespec const at_once{};
        sigtimedwait(&pipe_signal, nullptr, &at_once);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return written;
}

} // namespace

int open(at const & file, int flags, mode_t mode) {
    linked const path(file, true);
    return retried("open", [&] { return ::openat(path.folder(), path.name(), flags, mode); });
}

int close(int file) {
    int const result = ::close(file);
    return fails("close") ? -1 : result;
}

int duplicate(int file, int least) { return fails("duplicate") ? -1 : ::fcntl(file, F_DUPFD_CLOEXEC, least); }

int status_flags(int file) { return fails("status_flags") ? -1 : ::fcntl(file, F_GETFL); }

int set_status_flags(int file, int flags) { return fails("set_status_flags") ? -1 : ::fcntl(file, F_SETFL, flags); }

ssize_t read(int file, void * buffer, std::size_t size) {
    return transferred("read", size, [&](std::size_t count) { return ::read(file, buffer, count); });
}

ssize_t pread(int file, void * buffer, std::size_t size, off_t position) {
    return transferred("pread", size, [&](std::size_t count) { return ::pread(file, buffer, count, position); });
}

ssize_t pwrite(int file, void const * buffer, std::size_t size, off_t position) {
    return transferred("pwrite", size, [&](std::size_t count) { return ::pwrite(file, buffer, count, position); });
}

ssize_t write(int file, void const * buffer, std::size_t size) {
    return transferred("write", size, [&](std::size_t count) { return ::write(file, buffer, count); });
}

ssize_t write_quietly(int file, void const * buffer, std::size_t size) {
    return transferred("write_quietly", size,
                       [&](std::size_t count) { return write_without_signal(file, buffer, count); });
}

int wait_for(int file, short events) {
    pollfd waited{file, events, 0};
    return retried("wait_for", [&] { return ::poll(&waited, 1, -1); });
}

off_t lseek(int file, off_t distance, int method) { return fails("lseek") ? -1 : ::lseek(file, distance, method); }

int ftruncate(int file, off_t size) {
    return retried("ftruncate", [&] { return ::ftruncate(file, size); });
}

int fsync(int file) {
    return retried("fsync", [&] { return ::fsync(file); });
}

int flock(int file, int operation) {
    return retried("flock", [&] { return ::flock(file, operation); });
}

int stat(at const & file, struct stat * status) {
    return fails("stat") ? -1 : ::fstatat(file.folder(), file.name(), status, AT_EMPTY_PATH);
}

int lstat(at const & file, struct stat * status) {
    return fails("lstat") ? -1 : ::fstatat(file.folder(), file.name(), status, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW);
}

int fstat(int file, struct stat * status) { return fails("fstat") ? -1 : ::fstat(file, status); }

int statx(at const & file, int flags, unsigned mask, struct statx * status) {
    return fails("statx") ? -1 : ::statx(file.folder(), file.name(), flags | AT_EMPTY_PATH, mask, status);
}

int statfs(at const & file, struct statfs * status) {
    linked const path(file, false);
    return fails("statfs") ? -1 : ::statfs(path.name(), status);
}

int access(at const & file, int mode) {
    linked const path(file, true);
    return fails("access") ? -1 : ::faccessat(path.folder(), path.name(), mode, AT_EACCESS);
}

int chmod(at const & file, mode_t mode) {
    linked const path(file, true);
    return fails("chmod") ? -1 : ::fchmodat(path.folder(), path.name(), mode, 0);
}

int chown(at const & file, uid_t owner, gid_t group) {
    return fails("chown") ? -1 : ::fchownat(file.folder(), file.name(), owner, group, AT_EMPTY_PATH);
}

int utimensat(at const & file, timespec const times[2]) {
    linked const path(file, true);
    return fails("utimensat") ? -1 : ::utimensat(path.folder(), path.name(), times, 0);
}

int mkdir(at const & folder, mode_t mode) {
    return fails("mkdir") ? -1 : ::mkdirat(folder.folder(), folder.name(), mode);
}

int rmdir(at const & folder) { return fails("rmdir") ? -1 : ::unlinkat(folder.folder(), folder.name(), AT_REMOVEDIR); }

int unlink(at const & file) { return fails("unlink") ? -1 : ::unlinkat(file.folder(), file.name(), 0); }

int link(at const & from, at const & to) {
    return fails("link") ? -1 : ::linkat(from.folder(), from.name(), to.folder(), to.name(), 0);
}

int symlink(narrow_string const & target, at const & link) {
    return fails("symlink") ? -1 : ::symlinkat(target.c_str(), link.folder(), link.name());
}

ssize_t readlink(at const & link, char * buffer, std::size_t size) {
    return fails("readlink") ? -1 : ::readlinkat(link.folder(), link.name(), buffer, size);
}

int rename(at const & from, at const & to) {
    return fails("rename") ? -1 : ::renameat(from.folder(), from.name(), to.folder(), to.name());
}

int rename_no_replace(at const & from, at const & to) {
    if (fails("rename_no_replace"))
        return -1;
    return ::renameat2(from.folder(), from.name(), to.folder(), to.name(), RENAME_NOREPLACE);
}

int realpath(at const & file, narrow_string & path) {
    linked const asked(file, false);
    char resolved[PATH_MAX];
    if (fails("realpath") || ::realpath(asked.name(), resolved) == nullptr)
        return -1;
    path = resolved;
    return 0;
}

char * getcwd(char * buffer, std::size_t size) { return fails("getcwd") ? nullptr : ::getcwd(buffer, size); }

ssize_t getdents(int folder, void * buffer, std::size_t size) {
    return fails("getdents") ? -1 : ::getdents64(folder, buffer, size);
}

ssize_t getxattr(at const & file, char const * name, void * value, std::size_t size) {
    return fails("getxattr") ? -1 : attribute_of(file, name, value, size);
}

int setxattr(at const & file, char const * name, void const * value, std::size_t size, int flags) {
    linked const path(file, false);
    return fails("setxattr") ? -1 : ::setxattr(path.name(), name, value, size, flags);
}

int removexattr(at const & file, char const * name) {
    linked const path(file, false);
    return fails("removexattr") ? -1 : ::removexattr(path.name(), name);
}

ssize_t listxattr(at const & file, char * names, std::size_t size) {
    if (fails("listxattr"))
        return -1;
    if (has_attribute_calls(file))
        return ::syscall(call_number(465), file.folder(), file.name(), 0, names, size);
    return ::listxattr(linked(file, false).name(), names, size);
}

int getentropy(void * buffer, std::size_t size) { return fails("getentropy") ? -1 : ::getentropy(buffer, size); }

} // namespace platform::posix::host
