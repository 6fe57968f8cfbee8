#pragma once

#include "socle/any/path.h"
#include "socle/any/time.h"
#include "socle/io/mac/attributes.h"
#include "socle/io/optional.h"
#include "socle/io/unix/attributes.h"
#include "socle/io/win32/attributes.h"

namespace platform {
class open_folder;
struct WIN32_FILE_ATTRIBUTE_DATA;
} // namespace platform

namespace io {

class directory;

/// Everything about a file or folder but its bytes and its name. The set is read from one path, kept, and written to
/// the same path or another.
///
/// A flat file system has no place for Finder information. It lies beside the file, in a sidecar named with ".info"
/// behind the whole leaf: a MacBinary header of 128 bytes without forks.
class SOCLE_API attributes {
public:
    /// The types of `load` and `apply`: what becomes of the sidecar. 2 is as `no_sidecar`.
    enum sidecar_use : int { no_sidecar = 0, with_sidecar = 1, read_sidecar = 3 };

    /// With every member absent.
    attributes();
    attributes(attributes const &);
    attributes & operator=(attributes const &);
    ~attributes();

    /// Reads times and attribute bits of what is at `path`, follows links, and derives `read_only` and `unix` from
    /// them. With `type` 1 or 3, `mac_file` and both times then come from the sidecar; without one, or with one too
    /// short to be a header, they stay as they are. Everything that is not read becomes absent. 0 and 2 read no
    /// sidecar.
    ///
    /// Throws an `io::exception`: "what is this" where there is nothing, "cannot access timestamp(s) of", and for any
    /// other `type`, after all the rest is done, "unknown attributes type"; `io::fork` throws for a sidecar that cannot
    /// be read. The set then holds what was read so far.
    void load(any::path const & path, int type);

    /// Sets the times that are present, then the bits: of `win32`, else those that `read_only` means. Fails silently in
    /// both. With `type` 1 the sidecar is then written anew, whether `mac_file` is present or not.
    /// 0, 2 and 3 write none.
    ///
    /// Throws as `load` does for any other `type`, after all the rest is done, and what `io::fork` throws for a sidecar
    /// that cannot be written.
    void apply(any::path const & path, int type) const;

    /// The time of the last change, in GMT.
    optional<any::time> modified;
    /// The attribute bits of Win32.
    optional<io::win32::attributes> win32;
    /// The Finder information of a file.
    optional<mac::file_attributes> mac_file;
    /// The Finder information of a folder. The library neither reads nor writes it.
    optional<mac::folder_attributes> mac_folder;
    /// The permission bits: 0400 for a read-only file, else 0640; for a folder 0110 more. Not applied.
    optional<io::unix::attributes> unix;
    /// Whether the file may not be written.
    optional<bool> read_only;
    /// The time of creation, in GMT.
    optional<any::time> created;
    /// For the caller; `load` makes it absent, and nothing else uses it.
    optional<any::path> extra_path;

private:
    friend class directory;

    void load_entry(platform::open_folder const & folder, any::path const & path, int type);
    void clear();
    void take(platform::WIN32_FILE_ATTRIBUTE_DATA const & data);
    void load_bin(any::path const & path);
    void apply_bin(any::path const & path) const;

    // A null pointer leaves that time out.
    static bool set_time(any::path const & path, any::time const * created, any::time const * modified);
};

} // namespace io
