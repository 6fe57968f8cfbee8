#include "platform/posix/stream_owners.h"

#include "platform/posix/descriptor.h"
#include "platform/posix/error_codes.h"
#include "platform/posix/extended_attributes.h"

#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <string_view>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace platform::posix {

namespace {

/// On an owner: its claim. On the store's folder: its identity. On an id's folder: the owner's path in the volume.
constexpr char const * attribute = "user.socle.streams";
constexpr std::size_t id_length = 32;

void append_hex(narrow_string & text, uint64 value) {
    char digits[16];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr);
}

/// What no other file of the host has had or will have, as far as it can tell. Empty if there is no file.
narrow_string identity_of(narrow_string const & path, bool follow_link) {
    struct statx status {};
    if (statx(AT_FDCWD, path.c_str(), follow_link ? 0 : AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &status) != 0) {
        return {};
    }
    narrow_string identity;
    append_hex(identity, status.stx_ino);
    if ((status.stx_mask & STATX_BTIME) != 0) {
        append_hex(identity += '.', static_cast<uint64>(status.stx_btime.tv_sec));
        append_hex(identity += '.', status.stx_btime.tv_nsec);
        return identity;
    }
    // No birth time: inodes are at least apart from those of other file systems.
    struct statfs system {};
    if (statfs(path.c_str(), &system) == 0) {
        for (int half : system.f_fsid.__val) {
            append_hex(identity += '/', static_cast<unsigned>(half));
        }
    }
    return identity;
}

struct claim {
    narrow_string id;
    narrow_string identity;
};

/// What the attribute of `path` says; an empty id if it says nothing.
claim claim_of(narrow_string const & path, bool follow_link) {
    narrow_string text;
    if (!get_attribute(path, attribute, follow_link, text) || text.size() <= id_length || text[id_length] != ' '
        || text.find_first_not_of("0123456789abcdef") != id_length) {
        return {};
    }
    return {text.substr(0, id_length), text.substr(id_length + 1)};
}

/// 0 or an `errno`. The identity is asked again afterwards: the first write to a file on an overlay gives it a new one.
int set_claim(narrow_string const & path, narrow_string const & id) {
    for (narrow_string identity = identity_of(path, true);;) {
        if (int const error = set_attribute(path, attribute, id + ' ' + identity)) {
            return error;
        }
        narrow_string const now = identity_of(path, true);
        if (now == identity) {
            return 0;
        }
        identity = now;
    }
}

narrow_string volume_of(narrow_string const & store) { return store.substr(0, store.rfind('/')); }

/// Where in the volume a file lies, links resolved.
narrow_string path_in_volume(narrow_string const & store, narrow_string const & file) {
    narrow_string const volume = volume_of(store);
    char resolved[PATH_MAX];
    if (realpath(file.c_str(), resolved) == nullptr) {
        return {};
    }
    std::string_view const path = resolved;
    return narrow_string(path.starts_with(volume) ? path.substr(volume.size()) : path);
}

narrow_string folder_of(narrow_string const & store, narrow_string const & id) { return store + '/' + id; }

bool owner_was_at(narrow_string const & store, narrow_string const & id, narrow_string const & path) {
    narrow_string last;
    return get_attribute(folder_of(store, id), attribute, false, last) && last == path;
}

bool settled(narrow_string const & store) {
    narrow_string identity;
    return get_attribute(store, attribute, false, identity) && identity == identity_of(store, false);
}

/// Holds the store's folder locked against other processes; a file system without locks goes without.
descriptor_guard lock(narrow_string const & store) {
    descriptor_guard folder(open(store.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    while (folder.get() >= 0 && flock(folder.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
    return folder;
}

/// Everyone who may write some file of the volume may give it streams, so the store is open as a folder for temporary
/// files is; the folders in it admit whom their files admit.
int make_store(narrow_string const & store) {
    if (mkdir(store.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
        return errno;
    }
    narrow_string identity;
    if (get_attribute(store, attribute, false, identity)) {
        return 0;
    }
    if (chmod(store.c_str(), S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO) != 0) {
        return errno;
    }
    return set_attribute(store, attribute, identity_of(store, false));
}

/// The bits of a folder that lets in the readers and writers of a file with the bits `file`, and always its owner.
mode_t folder_bits(mode_t file) {
    mode_t const readers = file & (S_IRUSR | S_IRGRP | S_IROTH);
    mode_t const writers = file & (S_IWUSR | S_IWGRP | S_IWOTH);
    return S_IRWXU | readers | writers | readers >> 2 | writers >> 1;
}

int make_id_folder(narrow_string const & store, narrow_string const & id, narrow_string const & file) {
    narrow_string const folder = folder_of(store, id);
    if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
        return errno;
    }
    narrow_string const path = path_in_volume(store, file);
    narrow_string last;
    if (get_attribute(folder, attribute, false, last)) {
        if (last != path) {
            set_attribute(folder, attribute, path);
        }
        return 0;
    }
    // New, or left by a process that ended here.
    struct stat owner {};
    if (stat(file.c_str(), &owner) != 0) {
        return errno;
    }
    if (owner.st_uid != geteuid() || owner.st_gid != getegid()) {
        // Only root can; for others the bits below must do.
        static_cast<void>(!chown(folder.c_str(), owner.st_uid, owner.st_gid));
    }
    if (chmod(folder.c_str(), folder_bits(owner.st_mode)) != 0) {
        return errno;
    }
    // Only a hint for the time after the volume has been copied: without it, a folder with one claimant finds it.
    set_attribute(folder, attribute, path);
    return 0;
}

int new_id(narrow_string & id) {
    unsigned char random[id_length / 2];
    if (getentropy(random, sizeof random) != 0) {
        return errno;
    }
    id.clear();
    for (unsigned char byte : random) {
        id += "0123456789abcdef"[byte >> 4];
        id += "0123456789abcdef"[byte & 0xF];
    }
    return 0;
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
            claimant const * const owner = owner_of(id, claimants);
            if (owner != nullptr && !owner->proven && set_claim(owner->path, id) != 0) {
                complete_ = false;
            }
        }
        return complete_;
    }

private:
    void walk_folder(narrow_string const & folder, std::vector<narrow_string> & folders) {
        DIR * const entries = opendir((folder + '/').c_str());
        if (entries == nullptr) {
            complete_ = complete_ && errno == ENOENT;
            return;
        }
        while (dirent const * const entry = readdir(entries)) {
            std::string_view const name = entry->d_name;
            narrow_string const path = (folder + '/').append(name);
            if (name != "." && name != ".." && path != store_) {
                look_at(path, folders);
            }
        }
        closedir(entries);
    }

    void look_at(narrow_string const & path, std::vector<narrow_string> & folders) {
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0) {
            complete_ = complete_ && errno == ENOENT;
            return;
        }
        if (S_ISDIR(status.st_mode)) {
            folders.push_back(path);
        } else if (!S_ISREG(status.st_mode)) {
            return;
        }
        claim const found = claim_of(path, false);
        if (!found.id.empty() && access(folder_of(store_, found.id).c_str(), F_OK) == 0) {
            by_id_[found.id].push_back(
                {path, {status.st_dev, status.st_ino}, found.identity == identity_of(path, false)});
        }
    }

    claimant const * owner_of(narrow_string const & id, std::vector<claimant> const & claimants) const {
        bool one_file = true;
        claimant const * at_path = nullptr;
        for (claimant const & c : claimants) {
            if (c.proven) {
                return &c;
            }
            one_file = one_file && c.inode == claimants.front().inode;
            if (owner_was_at(store_, id, path_in_volume(store_, c.path))) {
                at_path = &c;
            }
        }
        // A claimant may hide in what could not be seen.
        return at_path == nullptr && one_file && complete_ ? &claimants.front() : at_path;
    }

    narrow_string const & store_;
    std::map<narrow_string, std::vector<claimant>> by_id_;
    bool complete_ = true;
};

} // namespace

narrow_string stream_owner(narrow_string const & store, narrow_string const & file, bool follow_link) {
    claim const found = claim_of(file, follow_link);
    if (found.id.empty() || found.identity == identity_of(file, follow_link)) {
        return found.id;
    }
    // On a copy that could not be settled, as it cannot be written, the place decides.
    bool const owner = !settled(store) && owner_was_at(store, found.id, path_in_volume(store, file));
    return owner ? found.id : narrow_string();
}

uint32 make_stream_owner(narrow_string const & store, narrow_string const & file, narrow_string & id) {
    if (int const error = make_store(store)) {
        return code_of(error);
    }
    id = stream_owner(store, file, true);
    if (id.empty()) {
        descriptor_guard const locked = lock(store);
        id = stream_owner(store, file, true);
        if (id.empty()) {
            int error = new_id(id);
            error = error != 0 ? error : set_claim(file, id);
            if (error != 0) {
                return code_of(error);
            }
        }
    }
    return code_of(make_id_folder(store, id, file));
}

void settle_owners(narrow_string const & volume, narrow_string const & store) {
    if (access(store.c_str(), F_OK) != 0 || settled(store)) {
        return;
    }
    descriptor_guard const locked = lock(store);
    if (settled(store)) {
        return;
    }
    claims found(store);
    found.walk(volume);
    if (found.settle()) {
        set_attribute(store, attribute, identity_of(store, false));
    }
}

} // namespace platform::posix
