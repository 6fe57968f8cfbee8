#pragma once

#include "socle/nio/item.h"
#include "socle/nio/time.h"

#include <array>

namespace nio {

class file;

/// What can be said about a file or directory besides its contents.
class SOCLE_API attributes {
public:
    attributes() = default;
    /// All zero, then `load`.
    explicit attributes(item & from);

    /// Takes the times, the attribute bits and the Finder information from the item. `finder_info` stays as it is where
    /// there is none. Throws `nio::filesystem_exception`, "cannot access timestamps", or "cannot open file" for
    /// information that is there, or may be, but out of reach.
    void load(item & from);

    /// Gives the item the times that are not 0, and the attribute bits; what the system refuses of that is passed over.
    ///
    /// With `write_info`, it also gets the Finder information: in a stream of the file if `allow_ntfs` and the volume
    /// has streams, else in the sidecar, which may be made for it under the normalized name of the file. Of a sidecar
    /// that is there only its Finder information changes, wherever it keeps that. Throws `nio::filesystem_exception`,
    /// "cannot write" or "cannot create"; "cannot write" also for a sidecar of another kind or without room for the
    /// information, which is left as it is.
    void apply(item & to, bool write_info, bool allow_ntfs) const;

    /// Whether the file may not be written.
    bool read_only = false;
    /// Of the last change, and of its making, in GMT.
    time modified;
    time created;
    /// Read-only 1, hidden 2, system 4, directory 0x10, archive 0x20, normal 0x80, temporary 0x100.
    uint32 file_attributes = 0;
    /// Unix permission bits. `load` makes them up from `read_only`, and nothing uses them.
    uint32 mode = 0666;
    std::array<unsigned char, 32> finder_info{};

private:
    static void open_info(file & info, wide_string const & path, bool allow_ntfs);
};

} // namespace nio
