#include "socle/platform/posix/files/copies.h"

#include "socle/platform/errors.h"
#include "socle/platform/file_times.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/streams/stream_owners.h"

#include <array>
#include <climits>
#include <new>
#include <optional>
#include <sys/file.h>
#include <vector>

namespace platform::posix {

namespace {

/// Removes a file with its streams.
int remove_file(volume const & on, narrow_string const & path) {
    std::optional<stream_removal> streams;
    if (on.streams)
        streams.emplace(*on.streams, path);
    if (host::unlink(path) != 0)
        return errno;
    if (streams)
        streams->name_removed();
    return 0;
}

/// Removes a file that is not to stay, with the streams that it has by then.
class unfinished {
public:
    unfinished(volume const & on, narrow_string const & path) : on_(on), path_(path) {}
    unfinished(unfinished const &) = delete;
    unfinished & operator=(unfinished const &) = delete;
    ~unfinished() {
        try {
            if (!path_.empty())
                remove_file(on_, path_);
        } catch (std::bad_alloc const &) {
            // It stays then.
        }
    }

    /// It is `path` now.
    void renamed(narrow_string && path) noexcept { path_.swap(path); }
    void keep() { path_.clear(); }

private:
    volume const & on_;
    narrow_string path_;
};

narrow_string folder_of(narrow_string const & path) {
    auto const end = path.rfind('/');
    return end == 0 ? "/" : path.substr(0, end);
}

/// A name beside `path` that nobody else has.
uint32 free_name(narrow_string const & path, narrow_string & name) {
    std::array<unsigned char, 8> bytes;
    if (host::getentropy(bytes.data(), bytes.size()) != 0)
        return code_of(errno);
    name = path.substr(0, path.rfind('/') + 1) + ".socle_";
    for (unsigned const byte : bytes) {
        name += "0123456789abcdef"[byte / 16];
        name += "0123456789abcdef"[byte % 16];
    }
    return 0;
}

/// The user's own extended attributes. The record of streams belongs to the one file that has it.
uint32 copy_attributes(narrow_string const & from, narrow_string const & to) {
    std::vector<char> names(65536); // the most that the host gives
    ssize_t const size = host::listxattr(from, names.data(), names.size());
    if (size < 0)
        return errno == ENOTSUP ? 0 : code_of(errno);
    char const * const end = names.data() + size;
    for (char const * name = names.data(); name < end; name += narrow_string(name).size() + 1) {
        narrow_string const text = name;
        narrow_string value;
        if (!text.starts_with("user.") || text == owner_attribute)
            continue;
        if (!get_attribute(from, name, true, value)) {
            if (errno == ENODATA)
                continue;
            return code_of(errno);
        }
        int const error = set_attribute(to, name, value);
        if (error == ENOTSUP)
            return 0; // kept where the host can
        if (error != 0)
            return code_of(error);
    }
    return 0;
}

uint32 code_if(bool failed) { return failed ? GetLastError() : 0; }

uint32 copy_all_streams(resolved_path const & from, volume const & on, narrow_string const & path) {
    std::vector<wide_string> names;
    uint32 const code = from.on->streams ? from.on->streams->list(from.host, names) : 0;
    if (code != 0 || names.empty())
        return code;
    return on.streams ? copy_streams(*from.on->streams, from.host, *on.streams, path) : ERROR_NOT_SUPPORTED;
}

/// Everything but the name, into a file that is open already.
uint32 copy_all(resolved_path const & from, int source, struct stat const & status, volume const & on,
                narrow_string const & path, int target) {
    // First, since the streams take the owner and the bits that the file has then.
    bool const owned = host::chown(path, status.st_uid, status.st_gid) == 0; // as far as the user may
    mode_t const mode = status.st_mode & (owned ? 07777 : 0777);
    if (host::chmod(path, mode | S_IWUSR) != 0)
        return code_of(errno);
    if (uint32 const code = copy_bytes(source, target))
        return code;
    if (uint32 const code = copy_all_streams(from, on, path))
        return code;
    if (uint32 const code = copy_attributes(from.host, path))
        return code;
    if (host::chmod(path, mode) != 0)
        return code_of(errno);
    uint32 const bits = GetFileAttributesW(from_host(from.host));
    if (uint32 const code = code_if(bits == INVALID_FILE_ATTRIBUTES || !SetFileAttributesW(from_host(path), bits)))
        return code;
    uint64 created = 0, modified = 0;
    bool const timed = GetFileTime(source, created, modified) && SetFileTime(target, &created, &modified);
    if (uint32 const code = code_if(!timed))
        return code;
    return host::fsync(target) == 0 ? 0 : code_of(errno);
}

/// Whether the open file is still what it was, and still the one at `path`: somebody may write without asking.
bool unchanged(int file, struct stat const & before, narrow_string const & path) {
    struct stat now {};
    struct stat there {};
    return host::fstat(file, &now) == 0 && host::lstat(path, &there) == 0 && there.st_dev == before.st_dev
           && there.st_ino == before.st_ino && now.st_size == before.st_size
           && now.st_mtim.tv_sec == before.st_mtim.tv_sec && now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
}

/// Lets a new name in a folder last.
uint32 sync_folder(narrow_string const & path) {
    descriptor_guard const folder = open_descriptor(path, O_RDONLY | O_DIRECTORY);
    if (folder.get() < 0)
        return errno == EACCES ? 0 : code_of(errno); // one that may be written, but not read
    return host::fsync(folder.get()) == 0 || errno == EINVAL ? 0 : code_of(errno);
}

uint32 move_file(resolved_path const & from, resolved_path const & to) {
    descriptor_guard const source = open_descriptor(from.host, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (source.get() < 0)
        return code_at(from.host, errno);
    // Whoever writes there would write to what is about to go.
    if (host::flock(source.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return ERROR_SHARING_VIOLATION;
    struct stat status {};
    if (host::fstat(source.get(), &status) != 0)
        return code_of(errno);
    narrow_string name;
    if (uint32 const code = free_name(to.host, name))
        return code;
    unfinished copy(*to.on, name);
    descriptor_guard const target = open_descriptor(name, O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (target.get() < 0) {
        int const error = errno;
        copy.keep(); // whose it may be
        return code_at(to.host, error);
    }
    if (uint32 const code = copy_all(from, source.get(), status, *to.on, name, target.get()))
        return code;
    narrow_string moved = to.host;
    if (int const error = rename_unless_there(name, to.host))
        return code_of(error);
    copy.renamed(std::move(moved));
    if (uint32 const code = sync_folder(folder_of(to.host)))
        return code;
    if (!unchanged(source.get(), status, from.host))
        return ERROR_SHARING_VIOLATION;
    if (int const error = remove_file(*from.on, from.host))
        return code_of(error);
    copy.keep();
    return 0;
}

uint32 move_link(resolved_path const & from, resolved_path const & to) {
    char target[PATH_MAX + 1];
    ssize_t const size = host::readlink(from.host, target, PATH_MAX);
    if (size < 0)
        return code_of(errno);
    target[size] = '\0';
    // Asked for while there is no second link yet, since it may take memory.
    narrow_string const folder = folder_of(to.host);
    if (host::symlink(target, to.host) != 0)
        return code_at(to.host, errno);
    uint32 code = sync_folder(folder);
    if (code == 0 && host::unlink(from.host) != 0)
        code = code_of(errno);
    if (code != 0)
        host::unlink(to.host);
    return code;
}

} // namespace

uint32 copy_bytes(int from, int to) {
    std::vector<char> block(std::size_t{256} * 1024);
    for (;;) {
        ssize_t const got = host::read(from, block.data(), block.size());
        if (got < 0)
            return code_of(errno);
        if (got == 0)
            return host::fsync(to) == 0 ? 0 : code_of(errno);
        for (ssize_t done = 0; done < got;) {
            ssize_t const written = host::write(to, block.data() + done, static_cast<std::size_t>(got - done));
            if (written < 0)
                return code_of(errno);
            done += written;
        }
    }
}

uint32 move_between(resolved_path const & from, resolved_path const & to) {
    struct stat status {};
    if (host::lstat(from.host, &status) != 0)
        return code_at(from.host, errno);
    if (S_ISDIR(status.st_mode))
        return ERROR_NOT_SAME_DEVICE;
    if (S_ISLNK(status.st_mode))
        return move_link(from, to);
    return S_ISREG(status.st_mode) ? move_file(from, to) : ERROR_NOT_SUPPORTED;
}

int rename_unless_there(narrow_string const & from, narrow_string const & to) {
    auto const cannot_promise = [](int error) {
        return error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EPERM || error == EMLINK;
    };
    if (host::rename_no_replace(from, to) == 0)
        return 0;
    if (!cannot_promise(errno) || to.starts_with(from + '/'))
        return errno;
    struct stat status {};
    if (host::lstat(from, &status) != 0)
        return errno;
    if (!S_ISDIR(status.st_mode)) {
        if (host::link(from, to) == 0) {
            if (host::unlink(from) == 0)
                return 0;
            int const error = errno;
            host::unlink(to);
            return error;
        }
        if (!cannot_promise(errno))
            return errno;
    }
    // No way that holds in a race.
    if (host::lstat(to, &status) == 0)
        return EEXIST;
    return host::rename(from, to) == 0 ? 0 : errno;
}

} // namespace platform::posix
