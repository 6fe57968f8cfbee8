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
/// test can let any of them fail. Opening, reading, writing, locking, truncating and syncing go on after a signal.
namespace platform::posix::host {

/// Asked before each call, with its name; what it returns but 0 is the `errno` with which the call fails instead.
/// `close` and `closedir` close all the same, as the host does. None at first.
extern int (*fault)(char const * call);

/// What `fault` may return as well: a call that reads or writes does so for half of the bytes, as a host may.
constexpr int half = -1;

/// The descriptor that stands for the working directory in the `at` calls.
constexpr int here = AT_FDCWD;

int open(narrow_string const & path, int flags, mode_t mode = 0);
int openat(int folder, narrow_string const & path, int flags);
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

int stat(narrow_string const & path, struct stat * status);
int lstat(narrow_string const & path, struct stat * status);
int fstat(int file, struct stat * status);
int statx(int folder, narrow_string const & path, int flags, unsigned mask, struct statx * status);
int statfs(narrow_string const & path, struct statfs * status);
int access(narrow_string const & path, int mode);
int chmod(narrow_string const & path, mode_t mode);
int chown(narrow_string const & path, uid_t owner, gid_t group);
int utimensat(int folder, narrow_string const & path, timespec const times[2], int flags);

int mkdir(narrow_string const & path, mode_t mode);
int rmdir(narrow_string const & path);
int unlink(narrow_string const & path);
int unlinkat(int folder, narrow_string const & path, int flags);
int link(narrow_string const & from, narrow_string const & to);
int symlink(narrow_string const & target, narrow_string const & path);
ssize_t readlink(narrow_string const & path, char * buffer, std::size_t size);
int rename(narrow_string const & from, narrow_string const & to);
/// Fails with EEXIST if `to` exists, with EINVAL or ENOSYS if the host cannot promise that.
int rename_no_replace(narrow_string const & from, narrow_string const & to);
char * realpath(narrow_string const & path, char * resolved);
char * getcwd(char * buffer, std::size_t size);

DIR * opendir(narrow_string const & path);
DIR * fdopendir(int file);
dirent * readdir(DIR * folder);
int closedir(DIR * folder);

ssize_t getxattr(narrow_string const & path, char const * name, void * value, std::size_t size);
ssize_t lgetxattr(narrow_string const & path, char const * name, void * value, std::size_t size);
int setxattr(narrow_string const & path, char const * name, void const * value, std::size_t size);
int removexattr(narrow_string const & path, char const * name);
ssize_t listxattr(narrow_string const & path, char * names, std::size_t size);

int getentropy(void * buffer, std::size_t size);

} // namespace platform::posix::host
