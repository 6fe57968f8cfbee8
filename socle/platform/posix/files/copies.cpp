#include "socle/platform/posix/files/copies.h"

#include "socle/platform/file_times.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/files/renames.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/streams/stream_claims.h"

#include <charconv>
#include <climits>
#include <new>
#include <sys/file.h>
#include <vector>

namespace platform::posix {

namespace {

/// The name beside `at` under which a file comes there, or goes. Whoever comes later knows it again.
narrow_string part_name(resolved_path const & at) {
    narrow_string const leaf = at.name.substr(at.beside("").size());
    uint64 hash = 0xCBF29CE484222325;
    for (char const c : leaf)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    char digits[16];
    return at.beside(
        narrow_string(".socle_").append(digits, std::to_chars(digits, digits + sizeof digits, hash, 16).ptr));
}

/// Clears what a process that ended has left under that name; 32 if one is still at it.
system_code clear_part(resolved_path const & at, narrow_string const & name) {
    struct stat status {};
    if (host::lstat(at.at(name), &status) != 0)
        return last_code_if(errno != ENOENT);
    descriptor_guard const part = open_descriptor(at.at(name), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (part.get() >= 0 && is_locked_out(part.get(), LOCK_EX))
        return ERROR_SHARING_VIOLATION;
    return code_of(remove_with_streams(at.on->streams.get(), at.at(name), host::unlink));
}

/// Removes a file that is not to stay, with the streams that it has by then.
class unfinished {
public:
    unfinished(resolved_path const & beside, narrow_string const & name) : beside_(beside), name_(name) {}
    unfinished(unfinished const &) = delete;
    unfinished & operator=(unfinished const &) = delete;
    ~unfinished() {
        try {
            if (!name_.empty())
                remove();
        } catch (std::bad_alloc const &) {
            // It stays then.
        }
    }

    /// It is `name` now.
    void renamed(narrow_string && name) noexcept { name_.swap(name); }
    void keep() { name_.clear(); }

private:
    /// It stays if its streams do, so that these are not left without it.
    void remove() const {
        named_streams::belongings gone;
        auto const * const streams = beside_.on->streams.get();
        if (streams != nullptr && streams->find_belongings(beside_.at(name_), gone)
            && streams->find_belongings(beside_.at(name_), gone))
            return;
        if (gone.name.empty() || !remove_belongings(gone))
            host::unlink(beside_.at(name_));
    }

    resolved_path const & beside_;
    narrow_string name_;
};

/// The streams of a file that goes, which nobody must write meanwhile.
struct held_streams {
    std::vector<wide_string> names;
    std::vector<descriptor_guard> locks;
};

/// The user's own extended attributes. The record of streams belongs to the one file that has it.
system_code copy_attributes(host::at const & from, host::at const & to) {
    std::vector<narrow_string> names;
    if (host_error const error = list_attributes(from, names))
        return code_of(error);
    for (narrow_string const & name : names) {
        narrow_string value;
        if (!name.starts_with("user.") || is_claim(name))
            continue;
        host_error error = get_attribute(from, name.c_str(), value);
        if (error == ENODATA)
            continue;
        if (!error && (error = set_attribute(to, name.c_str(), value)) == ENOTSUP)
            return {}; // kept where the host can
        if (error)
            return code_of(error);
    }
    return {};
}

system_code list_streams(resolved_path const & at, std::vector<wide_string> & names) {
    return at.on->streams ? at.on->streams->list(at.at(), names) : system_code();
}

system_code copy_all_streams(resolved_path const & from, resolved_path const & to, host::at const & copy,
                             held_streams & held) {
    system_code const code = list_streams(from, held.names);
    if (code || held.names.empty())
        return code;
    return to.on->streams ? copy_streams(*from.on->streams, from.at(), *to.on->streams, copy, held.locks)
                          : ERROR_NOT_SUPPORTED;
}

/// Everything but the name, into a file beside `to` that is open already.
system_code copy_all(resolved_path const & from, int source, struct stat const & status, resolved_path const & to,
                     narrow_string const & name, int target, held_streams & held) {
    host::at const copy = to.at(name);
    // First, since the streams take the owner and the bits that the file has then.
    bool const owned = host::chown(copy, status.st_uid, status.st_gid) == 0; // as far as the user may
    mode_t const mode = status.st_mode & (owned ? 07777 : 0777);
    if (host::chmod(copy, mode | S_IWUSR) != 0)
        return last_code();
    if (host_error const error = copy_bytes(source, target))
        return code_of(error);
    if (system_code const code = copy_all_streams(from, to, copy, held))
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
    return host::fstat(file, &now) == 0 && host::lstat(path, &there) == 0 && is_same_file(there, before)
           && now.st_size == before.st_size && now.st_mtim.tv_sec == before.st_mtim.tv_sec
           && now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
}

/// Lets a new name in a folder last.
system_code sync_folder(resolved_path const & at) {
    descriptor_guard const folder = open_descriptor(at.at(at.beside(".")), O_RDONLY | O_DIRECTORY);
    if (folder.get() < 0)
        return last_code_if(errno != EACCES); // one that may be written, but not read
    return last_code_if(host::fsync(folder.get()) != 0 && errno != EINVAL);
}

/// Removes a file that has been copied. Streams in a store go before it, so that none is left without its file.
system_code remove_source(resolved_path const & file, struct stat const & status, unfinished & copy) {
    named_streams::belongings gone;
    if (file.on->streams && status.st_nlink == 1)
        if (system_code const code = file.on->streams->find_belongings(file.at(), gone))
            return code;
    if (gone.name.empty())
        return code_of(remove_with_streams(file.on->streams.get(), file.at(), host::unlink));
    narrow_string const name = part_name(file);
    if (system_code const code = clear_part(file, name))
        return code;
    if (host_error const error = rename_unless_there(file.at(), file.at(name)))
        return code_of(error);
    copy.keep();
    // The file has moved, whatever becomes of the rest; what stays after all goes with the next move to this place.
    bool const alone = !remove_belongings(gone);
    if (alone && host::unlink(file.at(name)) != 0)
        host::unlink(file.at(name));
    return {};
}

system_code move_file(resolved_path const & from, resolved_path const & to) {
    descriptor_guard const source = open_descriptor(from.at(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (source.get() < 0)
        return last_code_at(from);
    // Whoever writes there would write to what is about to go.
    if (is_locked_out(source.get(), LOCK_SH))
        return ERROR_SHARING_VIOLATION;
    struct stat status {};
    if (host::fstat(source.get(), &status) != 0)
        return last_code();
    narrow_string const name = part_name(to);
    if (system_code const code = clear_part(to, name))
        return code;
    unfinished copy(to, name);
    descriptor_guard const target = open_descriptor(to.at(name), O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (target.get() < 0) {
        host_error const error = host_error::last();
        copy.keep(); // whose it may be
        return code_at(to, error);
    }
    host::flock(target.get(), LOCK_EX | LOCK_NB);
    held_streams held;
    if (system_code const code = copy_all(from, source.get(), status, to, name, target.get(), held))
        return code;
    narrow_string moved = to.name;
    if (host_error const error = rename_unless_there(to.at(name), to.at()))
        return code_of(error);
    copy.renamed(std::move(moved));
    if (system_code const code = sync_folder(to))
        return code;
    std::vector<wide_string> names;
    if (system_code const code = list_streams(from, names))
        return code;
    if (names != held.names || !unchanged(source.get(), status, from.at()))
        return ERROR_SHARING_VIOLATION;
    if (system_code const code = remove_source(from, status, copy))
        return code;
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

host_error copy_bytes(int from, int to) {
    std::vector<char> block(std::size_t{256} * 1024);
    for (;;) {
        ssize_t const got = host::read(from, block.data(), block.size());
        if (got < 0)
            return host_error::last();
        if (got == 0)
            return host_error::last_if(host::fsync(to) != 0);
        for (ssize_t done = 0; done < got;) {
            ssize_t const written = host::write(to, block.data() + done, static_cast<std::size_t>(got - done));
            if (written < 0)
                return host_error::last();
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
