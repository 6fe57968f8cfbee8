#include "socle/platform/posix/files/copies.h"

#include "socle/platform/file_times.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/files/renames.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/hex_id.h"
#include "socle/platform/posix/streams/stream_owners.h"

#include <climits>
#include <new>
#include <sys/file.h>
#include <vector>

namespace platform::posix {

namespace {

/// Removes a file that is not to stay, with the streams that it has by then.
class unfinished {
public:
    unfinished(resolved_path const & beside, narrow_string const & name) : beside_(beside), name_(name) {}
    unfinished(unfinished const &) = delete;
    unfinished & operator=(unfinished const &) = delete;
    ~unfinished() {
        try {
            if (!name_.empty())
                static_cast<void>(remove_with_streams(beside_.on->streams.get(), beside_.at(name_), host::unlink));
        } catch (std::bad_alloc const &) {
            // It stays then.
        }
    }

    /// It is `name` now.
    void renamed(narrow_string && name) noexcept { name_.swap(name); }
    void keep() { name_.clear(); }

private:
    resolved_path const & beside_;
    narrow_string name_;
};

/// The user's own extended attributes. The record of streams belongs to the one file that has it.
system_code copy_attributes(host::at const & from, host::at const & to) {
    std::vector<char> names(65536); // the most that the host gives
    ssize_t const size = host::listxattr(from, names.data(), names.size());
    if (size < 0)
        return last_code_if(errno != ENOTSUP);
    char const * const end = names.data() + size;
    for (char const * name = names.data(); name < end; name += narrow_string(name).size() + 1) {
        narrow_string const text = name;
        narrow_string value;
        if (!text.starts_with("user.") || text == owner_attribute)
            continue;
        host_error error = get_attribute(from, name, true, value);
        if (error == ENODATA)
            continue;
        if (!error && (error = set_attribute(to, name, value)) == ENOTSUP)
            return {}; // kept where the host can
        if (error)
            return code_of(error);
    }
    return {};
}

system_code copy_all_streams(resolved_path const & from, resolved_path const & to, host::at const & copy) {
    std::vector<wide_string> names;
    system_code const code = from.on->streams ? from.on->streams->list(from.at(), names) : system_code();
    if (code || names.empty())
        return code;
    return to.on->streams ? copy_streams(*from.on->streams, from.at(), *to.on->streams, copy) : ERROR_NOT_SUPPORTED;
}

/// Everything but the name, into a file beside `to` that is open already.
system_code copy_all(resolved_path const & from, int source, struct stat const & status, resolved_path const & to,
                     narrow_string const & name, int target) {
    host::at const copy = to.at(name);
    // First, since the streams take the owner and the bits that the file has then.
    bool const owned = host::chown(copy, status.st_uid, status.st_gid) == 0; // as far as the user may
    mode_t const mode = status.st_mode & (owned ? 07777 : 0777);
    if (host::chmod(copy, mode | S_IWUSR) != 0)
        return last_code();
    if (system_code const code = copy_bytes(source, target))
        return code;
    if (system_code const code = copy_all_streams(from, to, copy))
        return code;
    if (system_code const code = copy_attributes(from.at(), copy))
        return code;
    if (host::chmod(copy, mode) != 0)
        return last_code();
    uint32 bits = 0;
    if (system_code const code = attributes_at(from, bits, nullptr))
        return code;
    if (system_code const code = set_attributes_of(*to.on, copy, bits))
        return code;
    uint64 created = 0, modified = 0;
    if (!GetFileTime(source, created, modified) || !SetFileTime(target, &created, &modified))
        return GetLastError();
    return last_code_if(host::fsync(target) != 0);
}

/// Whether the open file is still what it was, and still the one at `path`: somebody may write without asking.
bool unchanged(int file, struct stat const & before, host::at const & path) {
    struct stat now {};
    struct stat there {};
    return host::fstat(file, &now) == 0 && host::lstat(path, &there) == 0 && there.st_dev == before.st_dev
           && there.st_ino == before.st_ino && now.st_size == before.st_size
           && now.st_mtim.tv_sec == before.st_mtim.tv_sec && now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
}

/// Lets a new name in a folder last.
system_code sync_folder(resolved_path const & at) {
    descriptor_guard const folder = open_descriptor(at.at(at.beside(".")), O_RDONLY | O_DIRECTORY);
    if (folder.get() < 0)
        return last_code_if(errno != EACCES); // one that may be written, but not read
    return last_code_if(host::fsync(folder.get()) != 0 && errno != EINVAL);
}

system_code move_file(resolved_path const & from, resolved_path const & to) {
    descriptor_guard const source = open_descriptor(from.at(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (source.get() < 0)
        return last_code_at(from);
    // Whoever writes there would write to what is about to go.
    if (host::flock(source.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return ERROR_SHARING_VIOLATION;
    struct stat status {};
    if (host::fstat(source.get(), &status) != 0)
        return last_code();
    narrow_string id;
    if (host_error const error = make_hex_id(8, id))
        return code_of(error);
    narrow_string const name = to.beside(".socle_" + id);
    unfinished copy(to, name);
    descriptor_guard const target = open_descriptor(to.at(name), O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (target.get() < 0) {
        host_error const error = host_error::last();
        copy.keep(); // whose it may be
        return code_at(to, error);
    }
    if (system_code const code = copy_all(from, source.get(), status, to, name, target.get()))
        return code;
    narrow_string moved = to.name;
    if (host_error const error = rename_unless_there(to.at(name), to.at()))
        return code_of(error);
    copy.renamed(std::move(moved));
    if (system_code const code = sync_folder(to))
        return code;
    if (!unchanged(source.get(), status, from.at()))
        return ERROR_SHARING_VIOLATION;
    if (host_error const error = remove_with_streams(from.on->streams.get(), from.at(), host::unlink))
        return code_of(error);
    copy.keep();
    return {};
}

system_code move_link(resolved_path const & from, resolved_path const & to) {
    char target[PATH_MAX + 1];
    ssize_t const size = host::readlink(from.at(), target, PATH_MAX);
    if (size < 0)
        return last_code();
    target[size] = '\0';
    if (host::symlink(target, to.at()) != 0)
        return last_code_at(to);
    system_code code = sync_folder(to);
    if (!code)
        code = last_code_if(host::unlink(from.at()) != 0);
    if (code)
        host::unlink(to.at());
    return code;
}

} // namespace

system_code copy_bytes(int from, int to) {
    std::vector<char> block(std::size_t{256} * 1024);
    for (;;) {
        ssize_t const got = host::read(from, block.data(), block.size());
        if (got < 0)
            return last_code();
        if (got == 0)
            return last_code_if(host::fsync(to) != 0);
        for (ssize_t done = 0; done < got;) {
            ssize_t const written = host::write(to, block.data() + done, static_cast<std::size_t>(got - done));
            if (written < 0)
                return last_code();
            done += written;
        }
    }
}

system_code move_between(resolved_path const & from, resolved_path const & to) {
    struct stat status {};
    if (host::lstat(from.at(), &status) != 0)
        return last_code_at(from);
    if (S_ISDIR(status.st_mode))
        return ERROR_NOT_SAME_DEVICE;
    if (S_ISLNK(status.st_mode))
        return move_link(from, to);
    return S_ISREG(status.st_mode) ? move_file(from, to) : ERROR_NOT_SUPPORTED;
}

} // namespace platform::posix
