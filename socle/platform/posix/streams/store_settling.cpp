#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/folder_reader.h"
#include "socle/platform/posix/streams/stream_claims.h"
#include "socle/platform/posix/streams/stream_owners.h"

#include <map>
#include <utility>
#include <vector>

namespace platform::posix {

namespace {

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
            } catch (host_error const &) {
                complete_ = false;
            }
        }
        return complete_;
    }

private:
    void walk_folder(narrow_string const & folder, std::vector<narrow_string> & folders) {
        descriptor_guard const opened =
            open_descriptor(folder.empty() ? "/" : folder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (opened.get() < 0) {
            complete_ = complete_ && errno == ENOENT;
            return;
        }
        folder_reader entries(opened.get());
        while (dirent64 const * const entry = entries.next()) {
            narrow_string const path = (folder + '/').append(entry->d_name);
            if (path != store_)
                look_at(path, folders);
        }
        complete_ = complete_ && !entries.error();
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
            stream_claim const found = claim_of(path, false);
            if (found.id.empty())
                return;
            if (host::access(streams_folder(store_, found.id), F_OK) == 0) {
                bool const proven = found.identity == identity_of(path, false);
                by_id_[found.id].push_back({path, {status.st_dev, status.st_ino}, proven});
            } else if (errno != ENOENT) {
                complete_ = false;
            }
        } catch (host_error const & error) {
            complete_ = complete_ && error == ENOENT;
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

bool settled(narrow_string const & store) {
    narrow_string identity;
    return read_owner_attribute(store, false, true, identity) && identity == identity_of(store, false);
}

} // namespace

system_code settle_owners(narrow_string const & volume, narrow_string const & store) {
    if (host::access(store, F_OK) != 0)
        return last_code_if(errno != ENOENT);
    try {
        if (settled(store))
            return {};
        store_lock const locked(store);
        if (settled(store))
            return {};
        claims found(store);
        found.walk(volume);
        if (found.settle())
            static_cast<void>(set_attribute(store, owner_attribute, identity_of(store, false)));
        return {};
    } catch (host_error const & error) {
        return code_of(error);
    }
}

} // namespace platform::posix
