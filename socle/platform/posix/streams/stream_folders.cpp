#include "socle/platform/posix/streams/stream_folders.h"

#include "socle/platform/posix/files/copies.h"
#include "socle/platform/posix/host/folder_reader.h"
#include "socle/platform/posix/host/hex_id.h"

#include <algorithm>
#include <sys/file.h>

namespace platform::posix {

namespace {

/// More than the longest name of a stream needs, so that nothing put there by hand leads down without end.
constexpr int deepest = 16;

descriptor_guard open_folder(host::at const & folder) {
    return open_descriptor(folder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
}

struct stat status_of(int file) {
    struct stat status {};
    require(host::fstat(file, &status) == 0);
    return status;
}

bool is_inner(std::string_view name) { return name.ends_with('~'); }

/// Does `step` with the name of each entry.
template <typename Step>
void each_entry(int folder, Step step) {
    folder_reader entries(folder);
    while (dirent64 const * const entry = entries.next())
        step(entry->d_name);
    require(entries.error());
}

bool belongs(struct stat const & status, uid_t owner, file_rights const & rights) {
    return status.st_uid == owner || status.st_uid == rights.owner;
}

void follow_entries(int folder, uid_t owner, file_rights const & rights, int depth) {
    each_entry(folder, [&](char const * name) {
        host::at const at(folder, name);
        descriptor_guard const entry = open_descriptor(at, O_PATH | O_NOFOLLOW);
        require(entry.get() >= 0);
        struct stat status = status_of(entry.get());
        if (S_ISDIR(status.st_mode) && is_inner(name) && depth > 0 && belongs(status, owner, rights)) {
            descriptor_guard const inner = open_folder(at);
            require(inner.get() >= 0);
            follow_entries(inner.get(), owner, rights, depth - 1);
        } else if (!is_stream(status, owner, rights, false)) {
            return;
        }
        let_follow(entry.get(), rights, status);
    });
}

/// Whether the owner of a copy may read what its original left.
bool may_borrow(struct stat const & status, file_rights const & rights) {
    mode_t const needed = S_ISDIR(status.st_mode) ? S_IROTH | S_IXOTH : S_IROTH;
    return status.st_uid == rights.owner || (status.st_mode & needed) == needed;
}

void copy_stream(streams_folder const & streams, file_rights const & rights, host::at const & from,
                 host::at const & to) {
    descriptor_guard const in = open_descriptor(from, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    require(in.get() >= 0);
    if (!is_stream(status_of(in.get()), streams.status.st_uid, rights, streams.borrowed))
        throw host_error(EACCES);
    lock(in.get(), LOCK_SH);
    descriptor_guard const out = open_descriptor(to, O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    require(out.get() >= 0);
    struct stat made = status_of(out.get());
    require(copy_bytes(in.get(), out.get()));
    let_follow(out.get(), rights, made);
}

void copy_entries(streams_folder const & streams, file_rights const & rights, int from, int to, int depth) {
    each_entry(from, [&](char const * name) {
        if (!is_inner(name) || depth == 0)
            return copy_stream(streams, rights, {from, name}, {to, name});
        descriptor_guard const source = open_inner(from, name, streams.status.st_uid, rights, false);
        descriptor_guard const target = open_inner(to, name, geteuid(), rights, true);
        copy_entries(streams, rights, source.get(), target.get(), depth - 1);
    });
}

/// The folder of a claim in a store; none if it is not there.
void open_claimed(streams_folder & streams, stream_store && store, stream_claim const & claim) {
    if (!store.is_open())
        return;
    streams.folder = open_folder({store.descriptor(), claim.id.c_str()});
    if (streams.is_open() || errno != ENOENT)
        require_open(streams.folder);
    streams.store = std::move(store);
    streams.claim = claim;
    if (streams.is_open())
        streams.status = status_of(streams.folder.get());
}

/// The folder above a path free of links; none if the file has moved meanwhile.
descriptor_guard open_above(narrow_string const & path) {
    narrow_string const above = path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
    descriptor_guard folder;
    narrow_string there;
    require(open_place(above, O_DIRECTORY, folder, there));
    return there == above ? std::move(folder) : descriptor_guard();
}

/// The same, looked for where the file is, and further up.
void look_upwards(streams_folder & streams, host::at const & file, stream_claim const & claim) {
    narrow_string path;
    require(real_path(file, path));
    descriptor_guard & folder = streams.above;
    folder = path == "/" ? descriptor_guard() : open_above(path);
    while (folder.get() >= 0) {
        path.resize(path.rfind('/'));
        open_claimed(streams, stream_store::open({folder.get(), path}), claim);
        if (streams.is_open() || path.empty())
            return;
        folder = open_descriptor({folder.get(), ".."}, O_PATH | O_DIRECTORY);
        require(folder.get() >= 0);
    }
}

/// Whether a file is where the folder says that its own is, and claims it.
bool owner_is_there(streams_folder const & streams, stream_note const & note, claimant const & copy) {
    try {
        claimant const there = claimant_at(streams.store.in_volume(note.path));
        return there.identity != copy.identity
               && std::any_of(there.claims.begin(), there.claims.end(),
                              [&](stream_claim const & claim) { return claim.id == streams.claim.id; });
    } catch (host_error const & error) {
        if (error == ENOENT || error == ENOTDIR)
            return false;
        throw;
    }
}

/// What a path in the volume of the store is called in a note.
narrow_string path_in_volume(stream_store const & store, host::at const & file) {
    narrow_string path;
    require(real_path(file, path));
    if (path.starts_with(store.volume()))
        path.erase(0, std::min(store.volume().size() + 1, path.size()));
    return path.empty() ? "." : path;
}

/// Removes entries of a folder; `depth` bounds what was put there by hand.
void remove_entries(int folder, int depth) {
    folder_reader entries(folder);
    while (dirent64 const * const entry = entries.next()) {
        host::at const name(folder, entry->d_name);
        if (host::unlink(name) == 0 || depth == 0)
            continue;
        descriptor_guard const inner = open_folder(name);
        if (inner.get() >= 0) {
            remove_entries(inner.get(), depth - 1);
            host::rmdir(name);
        }
    }
}

/// A folder that goes again unless its file has claimed it.
class new_folder {
public:
    explicit new_folder(stream_store const & store) : store_(store) {
        require(make_hex_id(stream_id_bytes, id_));
        require(host::mkdir({store.descriptor(), id_.c_str()}, S_IRWXU) == 0);
        folder_ = open_folder({store.descriptor(), id_.c_str()});
        if (folder_.get() >= 0)
            return;
        host_error const error = host_error::last();
        host::rmdir({store.descriptor(), id_.c_str()});
        throw error;
    }
    new_folder(new_folder const &) = delete;
    new_folder & operator=(new_folder const &) = delete;
    ~new_folder() {
        if (!kept_)
            static_cast<void>(remove_streams(store_.descriptor(), id_, folder_.get()));
    }

    int descriptor() const { return folder_.get(); }
    narrow_string const & id() const { return id_; }
    void keep() { kept_ = true; }

private:
    stream_store const & store_;
    narrow_string id_;
    descriptor_guard folder_;
    bool kept_ = false;
};

} // namespace

void lock(int file, int kind) { require(host_error(is_locked_out(file, kind) ? EWOULDBLOCK : 0)); }

bool is_stream(struct stat const & status, uid_t owner, file_rights const & rights, bool borrowed) {
    // Root may have made one that it could not hand on any more.
    bool const begun = status.st_uid == 0 && status.st_size == 0;
    return S_ISREG(status.st_mode) && status.st_nlink == 1 && (begun || belongs(status, owner, rights))
           && (!borrowed || may_borrow(status, rights));
}

streams_folder find_streams(held_place const & volume, host::at const & file, claimant const & owner) {
    streams_folder found;
    std::vector<stream_claim> useless;
    bool lost = false;
    for (stream_claim const & claim : owner.claims) {
        bool const own = claim.file == owner.identity;
        found = streams_folder();
        open_claimed(found, stream_store::open(volume), claim);
        // What was in this store, and is there no more, has been removed.
        bool const removed = !own && found.store.is_open() && found.store.identity() == claim.store;
        if (!found.is_open() && !removed)
            look_upwards(found, file, claim);
        if (!found.is_open()) {
            if (own)
                throw host_error(EUCLEAN);
            lost = lost || !removed;
            if (removed)
                useless.push_back(claim);
            continue;
        }
        stream_note const note = note_of(found.folder.get());
        if (note.file != claim.file)
            throw host_error(EACCES);
        uid_t const folder_owner = found.status.st_uid;
        if (own && folder_owner != 0 && folder_owner != owner.rights.owner && folder_owner != claim.maker)
            throw host_error(EACCES);
        found.borrowed = !own;
        if (own || !owner_is_there(found, note, owner)) {
            if (!own && !may_borrow(found.status, owner.rights))
                throw host_error(EACCES);
            if (!own)
                useless.push_back(claim);
            found.useless = std::move(useless);
            return found;
        }
        useless.push_back(claim);
    }
    found = streams_folder();
    found.useless = std::move(useless);
    found.lost = lost;
    return found;
}

bool make_streams(held_place const & volume, host::at const & file, claimant const & owner,
                  streams_folder const & from) {
    stream_store own_store;
    if (!from.is_open())
        own_store = stream_store::make(volume);
    stream_store const & store = from.is_open() ? from.store : own_store;
    new_folder made(store);
    lock(made.descriptor(), LOCK_SH); // a sweep passes over it
    if (from.is_open()) {
        lock(from.folder.get(), LOCK_EX);
        claimant const now = claimant_at(file);
        if (now.identity != owner.identity || now.first() != owner.first())
            return false;
        copy_entries(from, owner.rights, from.folder.get(), made.descriptor(), deepest);
    }
    stream_claim claim;
    claim.id = made.id();
    claim.store = store.identity();
    narrow_string const path = path_in_volume(store, file);
    struct stat status = status_of(made.descriptor());
    // Asked again afterwards: the first write to a file on an overlay gives it a new identity.
    for (narrow_string identity = owner.identity; identity != claim.file; identity = identity_of(file)) {
        claim.file = identity;
        set_note(made.descriptor(), {identity, path});
        let_follow(made.descriptor(), owner.rights, status);
        claim.maker = status.st_uid;
        if (!set_claim(file, claim, identity == owner.identity && owner.has_own()))
            return false;
        made.keep();
    }
    for (stream_claim const & useless : from.useless)
        remove_claim(file, useless);
    return true;
}

void let_all_follow(streams_folder & streams, file_rights const & rights) {
    bool const owned =
        geteuid() != 0 || (streams.status.st_uid == rights.owner && streams.status.st_gid == rights.group);
    if (!streams.serves() || (owned && (streams.status.st_mode & 07777) == rights.folder_mode(streams.status.st_gid)))
        return;
    // The folder last, so that it is done again if it was not done to the end.
    follow_entries(streams.folder.get(), streams.status.st_uid, rights, deepest);
    let_follow(streams.folder.get(), rights, streams.status);
}

void note_place(streams_folder const & streams, host::at const & file) {
    narrow_string const path = path_in_volume(streams.store, file);
    stream_note note = note_of(streams.folder.get());
    if (note.path == path)
        return;
    note.path = path;
    set_note(streams.folder.get(), note);
}

descriptor_guard open_inner(int folder, char const * name, uid_t owner, file_rights const & rights, bool create) {
    host::at const at(folder, name);
    descriptor_guard inner = open_folder(at);
    if (inner.get() < 0 && errno == ENOENT && create) {
        require(host::mkdir(at, S_IRWXU) == 0 || errno == EEXIST);
        inner = open_folder(at);
    }
    require_open(inner);
    struct stat status = status_of(inner.get());
    // Root may have made one that it could not hand on any more.
    bool const begun = status.st_uid == 0 && geteuid() == 0 && create;
    if (!begun && !belongs(status, owner, rights))
        throw host_error(EACCES);
    if (create)
        let_follow(inner.get(), rights, status);
    return inner;
}

host_error remove_streams(int store, narrow_string const & id, int folder) {
    host::at const at(store, id.c_str());
    host_error error;
    // Once more if something came in between: what stays would belong to nobody, until a sweep.
    for (int attempt = 0; attempt < 2; ++attempt) {
        host::lseek(folder, 0, SEEK_SET);
        remove_entries(folder, deepest);
        error = host_error::last_if(host::rmdir(at) != 0 && errno != ENOENT);
        if (!error)
            break;
    }
    return error;
}

} // namespace platform::posix
