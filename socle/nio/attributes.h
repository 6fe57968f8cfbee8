#pragma once

#include "socle/nio/item.h"
#include "socle/nio/time.h"

#include <array>

namespace platform {
class open_folder;
}

namespace nio {

class directory;
class file;

/// The attributes of a file or directory: times, bits and Finder information.
class SOCLE_API attributes {
public:
    attributes() = default;
    /// All zero, then `load`.
    explicit attributes(item & from);

    /// Reads the times, the attribute bits and the Finder information of the item. `finder_info` stays as it is where
    /// there is none. Throws `nio::filesystem_exception`, "cannot access timestamps", or, with the times and bits read,
    /// "cannot open file" for information that is there, or may be, but out of reach, and for a directory or a pipe in
    /// the place of the sidecar.
    void load(item & from);

    /// Sets the item's times, where they are not 0, then its attribute bits. Fails silently where the system refuses:
    /// the time of creation and the bits other than read-only are lost where the host cannot keep them.
    ///
    /// With `write_info`, it then gets the Finder information: in a stream of the file if `allow_ntfs` and the volume
    /// has streams, else in the sidecar, which may be made for it under the normalized name of the file. Of a sidecar
    /// that is there only its Finder information changes, wherever it keeps that; a directory in its place is left, and
    /// the information lost. Throws `nio::filesystem_exception`, "cannot write" or "cannot create"; "cannot write" also
    /// for a sidecar of another kind or without room for the information, which is left as it is. A stream is written
    /// while the file is not read-only, and times and bits hold afterwards.
    void apply(item & to, bool write_info, bool allow_ntfs) const;

    /// Whether the file may not be written.
    bool read_only = false;
    /// The time of the last change, in GMT.
    time modified;
    /// The time of creation, in GMT.
    time created;
    /// Read-only 1, hidden 2, system 4, directory 0x10, archive 0x20, normal 0x80, temporary 0x100.
    uint32 file_attributes = 0;
    /// Unix permission bits. `load` derives them from `read_only`; nothing uses them.
    uint32 mode = 0666;
    /// The 32 bytes of the Finder: 16 of `io::mac::info`, then 16 of `io::mac::extended_info`.
    std::array<unsigned char, 32> finder_info{};

private:
    friend class directory;

    void load_entry(platform::open_folder const & folder, wide_string const & name, wide_string const & path);
    void take_info(file & info);
    static void open_info(file & info, wide_string const & path, bool allow_ntfs);
    void write_info(file & info, wide_string const & path, bool allow_ntfs) const;
};

} // namespace nio
