#pragma once

#include "socle/any/path.h"
#include "socle/any/time.h"
#include "socle/io/mac/attributes.h"
#include "socle/io/optional.h"
#include "socle/io/unix/attributes.h"
#include "socle/io/win32/attributes.h"

namespace io {

/// Everything about a file or folder but its bytes and its name. The set is read from one path, carried, and written to
/// the same path or another.
///
/// What the Finder knows of a file has no place in a flat file system, so it lives beside the file, in a sidecar named
/// with ".info" behind the whole leaf: a MacBinary header of 128 bytes that no fork follows.
class SOCLE_API attributes {
public:
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
    /// other `type`, after all the rest is done, "unknown attributes type"; `io::fork` raises for a sidecar that cannot
    /// be read. The set then holds what was read so far.
    void load(any::path const & path, int type);

    /// Sets the times that are present, then the bits: of `win32`, else those that `read_only` stands for. That either
    /// fails is not reported. With `type` 1 the sidecar is then written anew, whether `mac_file` is present or not.
    /// 0, 2 and 3 write none.
    ///
    /// Throws as `load` does for any other `type`, after all the rest is done, and what `io::fork` raises for a sidecar
    /// that cannot be written.
    void apply(any::path const & path, int type) const;

    /// Of the last change.
    optional<any::time> modified;
    optional<io::win32::attributes> win32;
    /// Of a file.
    optional<mac::file_attributes> mac_file;
    /// Of a folder. The library neither reads nor writes it.
    optional<mac::folder_attributes> mac_folder;
    /// Of a read-only file 0400, else 0640; for a folder 0110 more. Not applied.
    optional<io::unix::attributes> unix;
    /// The file may not be written.
    optional<bool> read_only;
    optional<any::time> created;
    /// For the caller; the library makes it absent and no more.
    optional<any::path> extra_path;

private:
    void load_bin(any::path const & path);
    void apply_bin(any::path const & path) const;

    // A null pointer leaves that time out. The attribute bits come with the times: one question to the system.
    static uint32 get_time(any::path const & path, any::time * created, any::time * modified);
    static bool set_time(any::path const & path, any::time const * created, any::time const * modified);
};

} // namespace io
