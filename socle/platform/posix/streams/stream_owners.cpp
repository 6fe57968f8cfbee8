#include "socle/platform/posix/streams/stream_owners.h"

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/host_calls.h"

#include <cerrno>
#include <charconv>
#include <climits>
#include <map>
#include <string_view>
#include <sys/file.h>
#include <utility>
#include <vector>

namespace platform::posix {

namespace {

constexpr std::size_t id_length = 32;

/// Thrown where the host fails, with its `errno`, and caught where this file is entered: nobody must take a file that
/// could not be looked at for one that owns nothing.
struct failure {
    int error;
};

void append_hex(narrow_string & text, uint64 value) {
    char digits[16];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr);
}

/// The attribute's text; false if there is none, or no such file where `must_exist` is false.
bool read_attribute(narrow_string const & path, bool follow_link, bool must_exist, narrow_string & text) {
    if (get_attribute(path, owner_attribute, follow_link, text))
        return true;
    if (errno == ENODATA || errno == ENOTSUP || (!must_exist && errno == ENOENT))
        return false;
    throw failure{errno};
}

void write_attribute(narrow_string const & path, narrow_string const & text) {
    if (int const error = set_attribute(path, owner_attribute, text))
        throw failure{error};
}

/// What no other file of the host has had or will have, as far as it can tell.
narrow_string identity_of(narrow_string const & path, bool follow_link) {
    struct statx status {};
    if (host::statx(host::here, path, follow_link ? 0 : AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &status) != 0)
        throw failure{errno};
    narrow_string identity;
    append_hex(identity, status.stx_ino);
    if ((status.stx_mask & STATX_BTIME) != 0) {
        append_hex(identity += '.', static_cast<uint64>(status.stx_btime.tv_sec));
        append_hex(identity += '.', status.stx_btime.tv_nsec);
        return identity;
    }
    // No birth time: inodes are at least apart from those of other file systems.
    struct statfs system {};
    if (host::statfs(path, &system) != 0)
        throw failure{errno};
    for (int half : system.f_fsid.__val)
        append_hex(identity += '/', static_cast<unsigned>(half));
    return identity;
}

struct claim {
    narrow_string id;
    narrow_string identity;
};

/// What the attribute of `path` says; an empty id if it says nothing.
claim claim_of(narrow_string const & path, bool follow_link) {
    narrow_string text;
    if (!read_attribute(path, follow_link, true, text) || text.size() <= id_length || text[id_length] != ' '
        || text.find_first_not_of("0123456789abcdef") != id_length)
        return {};
    return {text.substr(0, id_length), text.substr(id_length + 1)};
}

/// The identity is asked again afterwards: the first write to a file on an overlay gives it a new one.
void set_claim(narrow_string const & path, narrow_string const & id) {
    narrow_string written;
    for (narrow_string identity = identity_of(path, true); identity != written; identity = identity_of(path, true)) {
        write_attribute(path, id + ' ' + identity);
        written = identity;
    }
}

narrow_string volume_of(narrow_string const & store) { return store.substr(0, store.rfind('/')); }

/// Where in the volume a file lies, links resolved.
narrow_string path_in_volume(narrow_string const & store, narrow_string const & file) {
    narrow_string const volume = volume_of(store);
    char resolved[PATH_MAX];
    if (host::realpath(file, resolved) == nullptr)
        throw failure{errno};
    std::string_view const path = resolved;
    return narrow_string(path.starts_with(volume) ? path.substr(volume.size()) : path);
}

narrow_string folder_of(narrow_string const & store, narrow_string const & id) { return store + '/' + id; }

bool owner_was_at(narrow_string const & store, narrow_string const & id, narrow_string const & path) {
    narrow_string last;
    return read_attribute(folder_of(store, id), false, false, last) && last == path;
}

bool settled(narrow_string const & store) {
    narrow_string identity;
    return read_attribute(store, false, true, identity) && identity == identity_of(store, false);
}

/// Holds the store's folder locked against other processes; a file system without locks goes without.
descriptor_guard lock(narrow_string const & store) {
    descriptor_guard folder = open_descriptor(store, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (folder.get() >= 0)
        host::flock(folder.get(), LOCK_EX);
    return folder;
}

/// Everyone who may write some file of the volume may give it streams, so the store is open as a folder for temporary
/// files is; the folders in it admit whom their files admit.
void make_store(narrow_string const & store) {
    if (host::mkdir(store, S_IRWXU) != 0 && errno != EEXIST)
        throw failure{errno};
    narrow_string identity;
    if (read_attribute(store, false, true, identity))
        return;
    if (host::chmod(store, S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO) != 0)
        throw failure{errno};
    write_attribute(store, identity_of(store, false));
}

/// The bits of a folder that lets in the readers and writers of a file with the bits `file`, and always its owner.
mode_t folder_bits(mode_t file) {
    mode_t const readers = file & (S_IRUSR | S_IRGRP | S_IROTH);
    mode_t const writers = file & (S_IWUSR | S_IWGRP | S_IWOTH);
    return S_IRWXU | readers | writers | readers >> 2 | writers >> 1;
}

void make_id_folder(narrow_string const & store, narrow_string const & id, narrow_string const & file) {
    narrow_string const folder = folder_of(store, id);
    bool const made = host::mkdir(folder, S_IRWXU) == 0;
    if (!made && errno != EEXIST)
        throw failure{errno};
    narrow_string const path = path_in_volume(store, file);
    narrow_string last;
    if (read_attribute(folder, false, true, last)) {
        if (last != path)
            write_attribute(folder, path);
        return;
    }
    // New, or left by a process that ended here.
    struct stat owner {};
    if (host::stat(file, &owner) != 0)
        throw failure{errno};
    if (owner.st_uid != geteuid() || owner.st_gid != getegid()) {
        // Only root can; for others the bits below must do.
        static_cast<void>(!host::chown(folder, owner.st_uid, owner.st_gid));
    }
    if (host::chmod(folder, folder_bits(owner.st_mode)) != 0 && made)
        throw failure{errno};
    write_attribute(folder, path);
}

narrow_string new_id() {
    unsigned char random[id_length / 2];
    if (host::getentropy(random, sizeof random) != 0)
        throw failure{errno};
    narrow_string id;
    for (unsigned char byte : random) {
        id += "0123456789abcdef"[byte >> 4];
        id += "0123456789abcdef"[byte & 0xF];
    }
    return id;
}

narrow_string find_owner(narrow_string const & store, narrow_string const & file, bool follow_link) {
    claim const found = claim_of(file, follow_link);
    if (found.id.empty() || found.identity == identity_of(file, follow_link))
        return found.id;
    // On a copy that could not be settled, as it cannot be written, the place decides.
    narrow_string identity;
    bool const copied = read_attribute(store, false, false, identity) && identity != identity_of(store, false);
    return copied && owner_was_at(store, found.id, path_in_volume(store, file)) ? found.id : narrow_string();
}

struct claimant {
    narrow_string path;
    std::pair<dev_t, ino_t> inode;
    bool proven;
};

/// All that a volume's files claim of the folders that are in its store.
class claims {
public:
    explicit claims(narrow_string const & store) : store_(store) {}

    void walk(narrow_string const & volume) {
        std::vector<narrow_string> folders = {volume};
        look_at(volume + '/', folders);
        folders = {volume};
        while (!folders.empty()) {
            narrow_string const folder = folders.back();
            folders.pop_back();
            walk_folder(folder, folders);
        }
    }

    /// Gives every folder its owner. False if some file could not be seen or written.
    bool settle() {
        for (auto const & [id, claimants] : by_id_) {
            try {
                claimant const * const owner = owner_of(id, claimants);
                if (owner != nullptr && !owner->proven)
                    set_claim(owner->path, id);
            } catch (failure const &) {
                complete_ = false;
            }
        }
        return complete_;
    }

private:
    void walk_folder(narrow_string const & folder, std::vector<narrow_string> & folders) {
        folder_guard const entries(host::opendir(folder + '/'));
        if (!entries) {
            complete_ = complete_ && errno == ENOENT;
            return;
        }
        errno = 0;
        while (dirent const * const entry = host::readdir(entries.get())) {
            std::string_view const name = entry->d_name;
            narrow_string const path = (folder + '/').append(name);
            if (name != "." && name != ".." && path != store_)
                look_at(path, folders);
            errno = 0;
        }
        complete_ = complete_ && errno == 0;
    }

    void look_at(narrow_string const & path, std::vector<narrow_string> & folders) {
        struct stat status {};
        if (host::lstat(path, &status) != 0) {
            complete_ = complete_ && errno == ENOENT;
            return;
        }
        if (S_ISDIR(status.st_mode))
            folders.push_back(path);
        else if (!S_ISREG(status.st_mode))
            return;
        try {
            claim const found = claim_of(path, false);
            if (found.id.empty())
                return;
            if (host::access(folder_of(store_, found.id), F_OK) == 0) {
                bool const proven = found.identity == identity_of(path, false);
                by_id_[found.id].push_back({path, {status.st_dev, status.st_ino}, proven});
            } else if (errno != ENOENT) {
                complete_ = false;
            }
        } catch (failure const & f) {
            complete_ = complete_ && f.error == ENOENT;
        }
    }

    claimant const * owner_of(narrow_string const & id, std::vector<claimant> const & claimants) const {
        bool one_file = true;
        claimant const * at_path = nullptr;
        for (claimant const & c : claimants) {
            if (c.proven)
                return &c;
            one_file = one_file && c.inode == claimants.front().inode;
            if (owner_was_at(store_, id, path_in_volume(store_, c.path)))
                at_path = &c;
        }
        // A claimant may hide in what could not be seen.
        return at_path == nullptr && one_file && complete_ ? &claimants.front() : at_path;
    }

    narrow_string const & store_;
    std::map<narrow_string, std::vector<claimant>> by_id_;
    bool complete_ = true;
};

} // namespace

uint32 stream_owner(narrow_string const & store, narrow_string const & file, bool follow_link, narrow_string & id) {
    try {
        id = find_owner(store, file, follow_link);
        return 0;
    } catch (failure const & f) {
        return code_of(f.error);
    }
}

uint32 make_stream_owner(narrow_string const & store, narrow_string const & file, narrow_string & id) {
    try {
        id = find_owner(store, file, true);
        make_store(store);
        if (id.empty()) {
            descriptor_guard const locked = lock(store);
            id = find_owner(store, file, true);
            if (id.empty()) {
                id = new_id();
                set_claim(file, id);
            }
        }
        make_id_folder(store, id, file);
        return 0;
    } catch (failure const & f) {
        return code_of(f.error);
    }
}

uint32 settle_owners(narrow_string const & volume, narrow_string const & store) {
    if (host::access(store, F_OK) != 0)
        return errno == ENOENT ? 0 : code_of(errno);
    try {
        if (settled(store))
            return 0;
        descriptor_guard const locked = lock(store);
        if (settled(store))
            return 0;
        claims found(store);
        found.walk(volume);
        if (found.settle())
            set_attribute(store, owner_attribute, identity_of(store, false));
        return 0;
    } catch (failure const & f) {
        return code_of(f.error);
    }
}

} // namespace platform::posix
