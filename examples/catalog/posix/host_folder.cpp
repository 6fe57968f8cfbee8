#include "catalog/host_folder.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace host {

namespace {

[[noreturn]] void fail(char const * what) { throw std::system_error(errno, std::generic_category(), what); }

uint64 file_time(statx_timestamp const & time) {
    constexpr int64 since_1601 = 11'644'473'600;
    int64 const units = (time.tv_sec + since_1601) * 10'000'000 + time.tv_nsec / 100;
    return units > 0 ? static_cast<uint64>(units) : 0;
}

kind kind_by(uint32 mode) {
    switch (mode & S_IFMT) {
    case S_IFREG: return kind::file;
    case S_IFDIR: return kind::folder;
    case S_IFLNK: return kind::link;
    default: return kind::other;
    }
}

int descriptor_of(std::intptr_t number) { return static_cast<int>(number); }

/// False, with `errno`, if there is nothing or it cannot be told.
bool look_at(int folder, char const * name, status & result) {
    constexpr int how = AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH | AT_NO_AUTOMOUNT;
    struct statx found;
    if (statx(folder, name, how, STATX_BASIC_STATS | STATX_BTIME, &found) != 0)
        return false;
    result.kind = kind_by(found.stx_mode);
    result.size = found.stx_size;
    result.stored = found.stx_blocks * 512;
    result.modified = file_time(found.stx_mtime);
    result.created = (found.stx_mask & STATX_BTIME) != 0 ? file_time(found.stx_btime) : 0;
    result.device = uint64(found.stx_dev_major) << 32 | found.stx_dev_minor;
    result.number = found.stx_ino;
    result.names = found.stx_nlink;
    result.mode = found.stx_mode & 07777;
    result.owner = found.stx_uid;
    result.group = found.stx_gid;
    return true;
}

/// A descriptor that is closed at the end of a block.
struct descriptor {
    int number;
    ~descriptor() { ::close(number); }
};

} // namespace

folder::folder(narrow_string const & path, bool follow)
    : number_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW))) {
    if (number_ == -1)
        fail("cannot open the folder");
}

folder::folder(folder && other) noexcept : number_(std::exchange(other.number_, -1)) {}

folder::~folder() {
    if (number_ != -1)
        ::close(descriptor_of(number_));
}

folder folder::inner(narrow_string const & name) const {
    int const result = ::openat(descriptor_of(number_), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
    if (result < 0)
        fail("cannot open the folder");
    return folder(result);
}

bool folder::make(narrow_string const & name) const {
    if (::mkdirat(descriptor_of(number_), name.c_str(), S_IRWXU) == 0)
        return true;
    if (errno != EEXIST)
        fail("cannot make the folder");
    return false;
}

void folder::move(narrow_string const & name, folder const & to, narrow_string const & new_name) const {
    auto const rename = [&](unsigned how) {
        return ::renameat2(descriptor_of(number_), name.c_str(), descriptor_of(to.number_), new_name.c_str(), how) == 0;
    };
    if (rename(RENAME_NOREPLACE))
        return;
    // Not every file system can promise that nothing is replaced.
    if (errno != EINVAL || to.look(new_name).kind != kind::nothing || !rename(0))
        fail("cannot be moved into place");
}

bool folder::remove(narrow_string const & name) const {
    return ::unlinkat(descriptor_of(number_), name.c_str(), AT_REMOVEDIR) == 0;
}

void folder::each(std::function<void(narrow_string const &, host::status const &)> const & visit) const {
    each_name([&](narrow_string const & name) {
        struct status known;
        if (look_at(descriptor_of(number_), name.c_str(), known))
            visit(name, known);
        else if (errno != ENOENT)
            fail("cannot be listed");
    });
}

void folder::each_name(std::function<void(narrow_string const &)> const & visit) const {
    int const again = ::openat(descriptor_of(number_), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR * const walk = again < 0 ? nullptr : ::fdopendir(again);
    if (walk == nullptr) {
        int const error = errno;
        ::close(again);
        errno = error;
        fail("cannot be listed");
    }
    struct closing {
        DIR * walk;
        ~closing() { ::closedir(walk); }
    } const at_end{walk};
    errno = 0;
    for (; dirent const * const entry = ::readdir(walk); errno = 0) {
        narrow_string const name = entry->d_name;
        if (name != "." && name != "..")
            visit(name);
    }
    if (errno != 0)
        fail("cannot be listed");
}

status folder::status() const { return look(""); }

status folder::look(narrow_string const & name) const {
    struct status result;
    if (!look_at(descriptor_of(number_), name.c_str(), result) && errno != ENOENT && errno != ENAMETOOLONG)
        fail("cannot be looked at");
    return result;
}

bool folder::own() const { return status().owner == ::geteuid(); }

narrow_string folder::path(narrow_string const & name) const { return path() + '/' + name; }

narrow_string folder::path() const { return "/proc/self/fd/" + std::to_string(number_); }

void folder::sync() const {
    if (::syncfs(descriptor_of(number_)) != 0)
        fail("cannot be brought to the disk");
}

lock::lock(folder const & folder)
    : number_(::openat(descriptor_of(folder.number_), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (number_ == -1)
        fail("cannot open the folder");
    // A file system without locks keeps nobody out.
    if (::flock(descriptor_of(number_), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return;
    ::close(descriptor_of(number_));
    number_ = -1;
}

lock::~lock() {
    if (held())
        ::close(descriptor_of(number_));
}

status status_of(narrow_string const & path) {
    status result;
    if (!look_at(AT_FDCWD, path.c_str(), result) && errno != ENOENT)
        fail("cannot be looked at");
    return result;
}

void hold_many_folders() {
    rlimit limit;
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

void make_private() { ::umask(S_IRWXG | S_IRWXO); }

std::vector<stretch> stretches_of(narrow_string const & path, status const & known) {
    std::vector<stretch> const whole = {{0, known.size}};
    if (known.stored >= known.size)
        return whole;
    descriptor const file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)};
    if (file.number < 0)
        fail("cannot open the file");
    std::vector<stretch> result;
    for (off_t at = 0; (at = ::lseek(file.number, at, SEEK_DATA)) >= 0;) {
        off_t const end = ::lseek(file.number, at, SEEK_HOLE);
        if (end < 0)
            return whole;
        result.push_back({static_cast<uint64>(at), static_cast<uint64>(end)});
        at = end;
    }
    return errno == ENXIO ? result : whole;
}

} // namespace host
