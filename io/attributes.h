#pragma once

#include "any/path.h"
#include "any/time.h"
#include "io/mac/attributes.h"
#include "io/optional.h"
#include "io/unix/attributes.h"
#include "io/win32/attributes.h"

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
};

} // namespace io
