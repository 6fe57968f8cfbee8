#pragma once

#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/streams/file_rights.h"

#include <vector>

/// What files say of the folders of their streams, and these of their files; docs/formats.md has the whole. These throw
/// the `host_error` with which the host fails: nobody must take a file that could not be looked at for one that owns
/// nothing.
namespace platform::posix {

/// Starts the name of the attribute by which a file claims a folder; its identity ends the name. A copy of the
/// attribute on another file tells by that where it comes from.
constexpr std::string_view claim_attribute = "user.socle.streams.";
/// On the folder of an id: the identity of its file, and where in the volume that was.
constexpr char const * note_attribute = "user.socle.streams";

/// The random bytes in an id.
constexpr std::size_t stream_id_bytes = 16;

/// Whether an attribute of a file is one of its claims, which no other file must get.
inline bool is_claim(std::string_view attribute) { return attribute.starts_with(claim_attribute); }

struct stream_claim {
    narrow_string file;  // the identity of the file that made it
    narrow_string id;    // names the folder
    narrow_string store; // the identity of the folder that it lies in
    uid_t maker = 0;     // the first owner of the folder
};

/// A file as one that may own streams.
struct claimant {
    narrow_string identity;
    file_rights rights;
    std::vector<stream_claim> claims; // one of its own comes first

    bool has_own() const { return !claims.empty() && claims.front().file == identity; }
    /// The folder that it claims first; "" if it claims none.
    std::string_view first() const { return claims.empty() ? std::string_view() : claims.front().id; }
};

/// Links are followed.
claimant claimant_at(host::at const & file);

/// What no other file of the host has had or will have, as far as it can tell.
narrow_string identity_of(host::at const & file);

/// Makes `file`, whose identity is `claim.file`, claim a folder. False if it has a claim of its own already, unless
/// that is to be replaced.
bool set_claim(host::at const & file, stream_claim const & claim, bool replace);
void remove_claim(host::at const & file, stream_claim const & claim);

/// What the open folder of an id says of its file. Empty if it says nothing.
struct stream_note {
    narrow_string file; // its identity
    narrow_string path; // from the volume's folder on, "." for that itself
};
stream_note note_of(int folder);
void set_note(int folder, stream_note const & note);

} // namespace platform::posix
