#include "socle/platform/posix/streams/stream_claims.h"

#include <algorithm>
#include <charconv>
#include <sys/xattr.h>

namespace platform::posix {

namespace {

void append_hex(narrow_string & text, uint64 value) {
    char digits[16];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr);
}

narrow_string attribute_of(stream_claim const & claim) { return narrow_string(claim_attribute) += claim.file; }

/// `<id> <store> <maker>`; false for what is none.
bool read_claim(std::string_view text, stream_claim & claim) {
    constexpr std::size_t id_length = 2 * stream_id_bytes;
    std::size_t const last = text.rfind(' ');
    if (text.find(' ') != id_length || last == id_length || text.find_first_not_of("0123456789abcdef") != id_length)
        return false;
    claim.id = text.substr(0, id_length);
    claim.store = text.substr(id_length + 1, last - id_length - 1);
    return read_number(text.substr(last + 1), 10, claim.maker);
}

/// Empty where there is none.
narrow_string text_of(host::at const & file, char const * attribute) {
    narrow_string text;
    host_error const error = get_attribute(file, attribute, text);
    require(error == ENODATA ? host_error() : error);
    return text;
}

narrow_string identity_of(host::at const & file, struct statx const & status) {
    narrow_string identity;
    append_hex(identity, status.stx_ino);
    if ((status.stx_mask & STATX_BTIME) != 0) {
        append_hex(identity += '.', static_cast<uint64>(status.stx_btime.tv_sec));
        append_hex(identity += '.', status.stx_btime.tv_nsec);
        return identity;
    }
    // No birth time: inodes are at least apart from those of other file systems.
    struct statfs system {};
    require(host::statfs(file, &system) == 0);
    for (int half : system.f_fsid.__val)
        append_hex(identity += '/', static_cast<unsigned>(half));
    return identity;
}

} // namespace

narrow_string identity_of(host::at const & file) {
    struct statx status {};
    require(host::statx(file, 0, STATX_INO | STATX_BTIME, &status) == 0);
    return identity_of(file, status);
}

claimant claimant_at(host::at const & file) {
    claimant result;
    std::vector<narrow_string> names;
    require(list_attributes(file, names));
    struct statx status {};
    require(host::statx(file, 0, STATX_BASIC_STATS | STATX_BTIME, &status) == 0);
    result.identity = identity_of(file, status);
    result.rights = {status.stx_uid, status.stx_gid, status.stx_mode, false};
    for (narrow_string const & name : names) {
        result.rights.listed |= name == "system.posix_acl_access";
        if (!is_claim(name))
            continue;
        stream_claim claim;
        claim.file = name.substr(claim_attribute.size());
        if (read_claim(text_of(file, name.c_str()), claim))
            result.claims.push_back(claim);
    }
    std::stable_partition(result.claims.begin(), result.claims.end(),
                          [&](stream_claim const & claim) { return claim.file == result.identity; });
    return result;
}

bool set_claim(host::at const & file, stream_claim const & claim, bool replace) {
    narrow_string const text = claim.id + ' ' + claim.store + ' ' + std::to_string(claim.maker);
    host_error const error = set_attribute(file, attribute_of(claim).c_str(), text, replace ? 0 : XATTR_CREATE);
    require(error == EEXIST ? host_error() : error);
    return !error;
}

void remove_claim(host::at const & file, stream_claim const & claim) {
    // One that stays is passed over behind an own one.
    static_cast<void>(host::removexattr(file, attribute_of(claim).c_str()) == 0);
}

stream_note note_of(int folder) {
    narrow_string const text = text_of(host::at(folder), note_attribute);
    std::size_t const space = text.find(' ');
    return space == narrow_string::npos ? stream_note() : stream_note{text.substr(0, space), text.substr(space + 1)};
}

void set_note(int folder, stream_note const & note) {
    require(set_attribute(host::at(folder), note_attribute, note.file + ' ' + note.path));
}

} // namespace platform::posix
