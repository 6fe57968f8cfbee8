#include "socle/platform/posix/streams/stream_claims.h"

#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/streams/stream_owners.h"

#include <charconv>
#include <string_view>
#include <sys/file.h>

namespace platform::posix {

namespace {

constexpr std::size_t id_length = 2 * stream_id_bytes;

void append_hex(narrow_string & text, uint64 value) {
    char digits[16];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr);
}

} // namespace

stream_claim claim_of(host::at const & file, bool follow_link) {
    narrow_string text;
    if (!read_owner_attribute(file, follow_link, true, text) || text.size() <= id_length || text[id_length] != ' '
        || text.find_first_not_of("0123456789abcdef") != id_length)
        return {};
    return {text.substr(0, id_length), text.substr(id_length + 1)};
}

void set_claim(host::at const & file, narrow_string const & id) {
    // Asked again afterwards: the first write to a file on an overlay gives it a new identity.
    narrow_string written;
    for (narrow_string identity = identity_of(file, true); identity != written; identity = identity_of(file, true)) {
        write_owner_attribute(file, id + ' ' + identity);
        written = identity;
    }
}

narrow_string identity_of(host::at const & file, bool follow_link) {
    struct statx status {};
    if (host::statx(file, follow_link ? 0 : AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &status) != 0)
        throw host_error::last();
    narrow_string identity;
    append_hex(identity, status.stx_ino);
    if ((status.stx_mask & STATX_BTIME) != 0) {
        append_hex(identity += '.', static_cast<uint64>(status.stx_btime.tv_sec));
        append_hex(identity += '.', status.stx_btime.tv_nsec);
        return identity;
    }
    // No birth time: inodes are at least apart from those of other file systems.
    struct statfs system {};
    if (host::statfs(file, &system) != 0)
        throw host_error::last();
    for (int half : system.f_fsid.__val)
        append_hex(identity += '/', static_cast<unsigned>(half));
    return identity;
}

bool read_owner_attribute(host::at const & file, bool follow_link, bool must_exist, narrow_string & text) {
    host_error const error = get_attribute(file, owner_attribute, follow_link, text);
    if (error && error != ENODATA && error != ENOTSUP && (must_exist || error != ENOENT))
        throw error;
    return !error;
}

void write_owner_attribute(host::at const & file, narrow_string const & text) {
    if (host_error const error = set_attribute(file, owner_attribute, text))
        throw error;
}

narrow_string path_in_volume(narrow_string const & store, host::at const & file) {
    std::string_view const volume = std::string_view(store).substr(0, store.rfind('/'));
    narrow_string path;
    if (host_error const error = real_path(file, path))
        throw error;
    return path.starts_with(volume) ? path.substr(volume.size()) : path;
}

narrow_string streams_folder(narrow_string const & store, narrow_string const & id) { return store + '/' + id; }

bool owner_was_at(narrow_string const & store, narrow_string const & id, narrow_string const & path) {
    narrow_string last;
    return read_owner_attribute(streams_folder(store, id), false, false, last) && last == path;
}

store_lock::store_lock(narrow_string const & store)
    : folder_(open_descriptor(store, O_RDONLY | O_DIRECTORY | O_NOFOLLOW)) {
    if (folder_.get() >= 0)
        host::flock(folder_.get(), LOCK_EX);
}

} // namespace platform::posix
