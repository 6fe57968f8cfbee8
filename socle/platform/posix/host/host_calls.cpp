#include "socle/platform/posix/host/host_calls.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/socket.h>
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

} // namespace

int open(narrow_string const & path, int flags, mode_t mode) {
    return retried("open", [&] { return ::open(path.c_str(), flags, mode); });
}

int openat(int folder, narrow_string const & path, int flags) {
    return retried("openat", [&] { return ::openat(folder, path.c_str(), flags); });
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
    if (fails("write_quietly"))
        return -1;
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
        while (sigtimedwait(&pipe_signal, nullptr, &at_once) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return written;
}

int wait_for(int file, short events) {
    pollfd waited{file, events, 0};
    return fails("wait_for") ? -1 : ::poll(&waited, 1, -1);
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

int stat(narrow_string const & path, struct stat * status) { return fails("stat") ? -1 : ::stat(path.c_str(), status); }

int lstat(narrow_string const & path, struct stat * status) {
    return fails("lstat") ? -1 : ::lstat(path.c_str(), status);
}

int fstat(int file, struct stat * status) { return fails("fstat") ? -1 : ::fstat(file, status); }

int statx(int folder, narrow_string const & path, int flags, unsigned mask, struct statx * status) {
    return fails("statx") ? -1 : ::statx(folder, path.c_str(), flags, mask, status);
}

int statfs(narrow_string const & path, struct statfs * status) {
    return fails("statfs") ? -1 : ::statfs(path.c_str(), status);
}

int access(narrow_string const & path, int mode) { return fails("access") ? -1 : ::access(path.c_str(), mode); }

int chmod(narrow_string const & path, mode_t mode) { return fails("chmod") ? -1 : ::chmod(path.c_str(), mode); }

int chown(narrow_string const & path, uid_t owner, gid_t group) {
    return fails("chown") ? -1 : ::chown(path.c_str(), owner, group);
}

int utimensat(int folder, narrow_string const & path, timespec const times[2], int flags) {
    return fails("utimensat") ? -1 : ::utimensat(folder, path.c_str(), times, flags);
}

int mkdir(narrow_string const & path, mode_t mode) { return fails("mkdir") ? -1 : ::mkdir(path.c_str(), mode); }

int rmdir(narrow_string const & path) { return fails("rmdir") ? -1 : ::rmdir(path.c_str()); }

int unlink(narrow_string const & path) { return fails("unlink") ? -1 : ::unlink(path.c_str()); }

int unlinkat(int folder, narrow_string const & path, int flags) {
    return fails("unlinkat") ? -1 : ::unlinkat(folder, path.c_str(), flags);
}

int link(narrow_string const & from, narrow_string const & to) {
    return fails("link") ? -1 : ::link(from.c_str(), to.c_str());
}

int symlink(narrow_string const & target, narrow_string const & path) {
    return fails("symlink") ? -1 : ::symlink(target.c_str(), path.c_str());
}

ssize_t readlink(narrow_string const & path, char * buffer, std::size_t size) {
    return fails("readlink") ? -1 : ::readlink(path.c_str(), buffer, size);
}

int rename(narrow_string const & from, narrow_string const & to) {
    return fails("rename") ? -1 : ::rename(from.c_str(), to.c_str());
}

int rename_no_replace(narrow_string const & from, narrow_string const & to) {
    return fails("rename_no_replace") ? -1
                                      : ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
}

char * realpath(narrow_string const & path, char * resolved) {
    return fails("realpath") ? nullptr : ::realpath(path.c_str(), resolved);
}

char * getcwd(char * buffer, std::size_t size) { return fails("getcwd") ? nullptr : ::getcwd(buffer, size); }

DIR * opendir(narrow_string const & path) {
    for (;;) {
        DIR * const folder = fails("opendir") ? nullptr : ::opendir(path.c_str());
        if (folder != nullptr || errno != EINTR)
            return folder;
    }
}

DIR * fdopendir(int file) { return fails("fdopendir") ? nullptr : ::fdopendir(file); }

dirent * readdir(DIR * folder) { return fails("readdir") ? nullptr : ::readdir(folder); }

int closedir(DIR * folder) {
    int const result = ::closedir(folder);
    return fails("closedir") ? -1 : result;
}

ssize_t getxattr(narrow_string const & path, char const * name, void * value, std::size_t size) {
    return fails("getxattr") ? -1 : ::getxattr(path.c_str(), name, value, size);
}

ssize_t lgetxattr(narrow_string const & path, char const * name, void * value, std::size_t size) {
    return fails("lgetxattr") ? -1 : ::lgetxattr(path.c_str(), name, value, size);
}

int setxattr(narrow_string const & path, char const * name, void const * value, std::size_t size) {
    return fails("setxattr") ? -1 : ::setxattr(path.c_str(), name, value, size, 0);
}

int removexattr(narrow_string const & path, char const * name) {
    return fails("removexattr") ? -1 : ::removexattr(path.c_str(), name);
}

ssize_t listxattr(narrow_string const & path, char * names, std::size_t size) {
    return fails("listxattr") ? -1 : ::listxattr(path.c_str(), names, size);
}

int getentropy(void * buffer, std::size_t size) { return fails("getentropy") ? -1 : ::getentropy(buffer, size); }

} // namespace platform::posix::host
