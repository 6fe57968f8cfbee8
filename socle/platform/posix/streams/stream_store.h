#pragma once

#include "socle/platform/posix/host/descriptor.h"

namespace platform::posix {

constexpr std::string_view store_name = ".socle_streams";

/// Throws why the folder of a store, or one in it, did not open: EACCES for something else in its place.
void require_open(descriptor_guard const & folder);

/// The folder at the top of a volume that holds the folders of its files' streams. Everybody may enter it and make
/// folders in it; only its owner can list it, and only theirs can remove them. These throw `host_error`.
///
/// It is only trusted if it is a folder, no link, on the file system of the volume's folder itself, and marked as a
/// store; and where not everybody who may put something there could as well take it away, if it belongs to root, to the
/// owner of the volume's folder, or to this user. Root takes over one that belongs to anybody else.
class stream_store {
public:
    stream_store() = default;

    /// That of a volume's folder, which must stay open as long. EACCES for something else in its place, EUCLEAN where
    /// the folder has been moved or removed.
    static stream_store open(held_place const & volume);
    /// The same, but makes one where there is none.
    static stream_store make(held_place const & volume);

    bool is_open() const { return folder_.get() >= 0; }
    int descriptor() const { return folder_.get(); }
    narrow_string const & volume() const { return volume_.path; }
    narrow_string const & identity() const { return identity_; }
    /// An entry of the volume.
    host::at in_volume(narrow_string const & path) const { return {volume_.folder, path.c_str()}; }

private:
    held_place volume_{-1, {}};
    descriptor_guard folder_;
    narrow_string identity_;
};

} // namespace platform::posix
