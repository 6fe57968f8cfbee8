#pragma once

#include "socle/basic/types.h"

#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/vfs.h>
#include <unistd.h>

/// Every call that this folder makes to the host's files: the same names, results and `errno` as the host's own. So a
/// test can let any of them fail. Opening, reading, writing, waiting, locking, truncating and syncing go on after a
/// signal.
namespace platform::posix::host {

/// Asked before each call, with its name; what it returns but 0 is the `errno` with which the call fails instead.
/// `close` closes all the same, as the host does. None at first.
extern int (*fault)(char const * call);

/// What `fault` may return as well: a call that reads or writes does so for half of the bytes, as a host may.
constexpr int half = -1;

/// A file as the calls below take it: a path, a name in an open folder, or what a descriptor stands for. It refers to
/// the text.
class at {
public:
    at(narrow_string const & path) : at(AT_FDCWD, path.c_str()) {}
    at(char const * path) : at(AT_FDCWD, path) {}
    at(int folder, char const * name) : folder_(folder), name_(name) {}
    explicit at(int file) : at(file, "") {}

    int folder() const { return folder_; }
    char const * name() const { return name_; }
    bool is_path() const { return folder_ == AT_FDCWD; }
    bool is_descriptor() const { return *name_ == '\0' && !is_path(); }

private:
    int folder_;
    char const * name_;
};

int open(at const & file, int flags, mode_t mode = 0);
int close(int file);
/// A copy of a descriptor at or above `least`, closed on exec.
int duplicate(int file, int least);
int status_flags(int file);
int set_status_flags(int file, int flags);

ssize_t read(int file, void * buffer, std::size_t size);
ssize_t pread(int file, void * buffer, std::size_t size, off_t position);
ssize_t pwrite(int file, void const * buffer, std::size_t size, off_t position);
ssize_t write(int file, void const * buffer, std::size_t size);
/// `write` on a pipe or a socket: EPIPE comes without its signal, and signals that others sent stay as they were.
ssize_t write_quietly(int file, void const * buffer, std::size_t size);
/// Waits until a descriptor that does not block can be read or written: `events` as for poll(2).
int wait_for(int file, short events);
off_t lseek(int file, off_t distance, int method);
int ftruncate(int file, off_t size);
int fsync(int file);
int flock(int file, int operation);

int stat(at const & file, struct stat * status);
int lstat(at const & file, struct stat * status);
int fstat(int file, struct stat * status);
/// With AT_SYMLINK_NOFOLLOW in `flags` a link tells of itself.
int statx(at const & file, int flags, unsigned mask, struct statx * status);
int statfs(at const & file, struct statfs * status);
int access(at const & file, int mode);
int chmod(at const & file, mode_t mode);
int chown(at const & file, uid_t owner, gid_t group);
int utimensat(at const & file, timespec const times[2]);

int mkdir(at const & folder, mode_t mode);
int rmdir(at const & folder);
int unlink(at const & file);
int link(at const & from, at const & to);
int symlink(narrow_string const & target, at const & link);
ssize_t readlink(at const & link, char * buffer, std::size_t size);
int rename(at const & from, at const & to);
/// Fails with EEXIST if `to` exists, with EINVAL or ENOSYS if the host cannot promise that.
int rename_no_replace(at const & from, at const & to);
/// The path without links in it, asked link by link.
int realpath(at const & file, narrow_string & path);
char * getcwd(char * buffer, std::size_t size);
/// The next entries of an open folder, as `dirent64`; 0 bytes at its end.
ssize_t getdents(int folder, void * buffer, std::size_t size);

ssize_t getxattr(at const & file, char const * name, void * value, std::size_t size);
/// With XATTR_CREATE in `flags` only an attribute that is not there yet.
int setxattr(at const & file, char const * name, void const * value, std::size_t size, int flags);
int removexattr(at const & file, char const * name);
ssize_t listxattr(at const & file, char * names, std::size_t size);

int getentropy(void * buffer, std::size_t size);

} // namespace platform::posix::host
