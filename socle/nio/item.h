#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

/// Questions to the file system about a path, and changes of a path that depend on the answer.
namespace nio {

/// Whether there is anything at the path; a dangling link counts.
SOCLE_API bool exists(wide_string const & path);
/// Whether a folder is there, or a link to one.
SOCLE_API bool is_directory(wide_string const & path);
/// Whether the extension is ".lnk" in any case; does not access the file system.
SOCLE_API bool is_link(wide_string const & path);

/// The full path; empty if there is none.
SOCLE_API wide_string make_absolute(wide_string const & path);
/// `path` if nothing is there, else the first of name_1.ext, name_2.ext, ... up to `tries` where nothing is. Throws
/// `nio::filesystem_exception`, "cannot resolve a name conflict", if all are taken.
SOCLE_API wide_string make_unique(wide_string const & path, uint32 tries);
/// The target of a shell link; any other path, and that of a link which cannot be read, as it is.
SOCLE_API wide_string resolve_link(wide_string const & path);
/// The environment's "TEMP", else its "TMP", else ".".
SOCLE_API wide_string temp_directory();

/// A path by which the wide family names a thing; nothing is held open.
class SOCLE_API item {
public:
    item() = default;
    /// Refers to `path`; does not access the file system.
    explicit item(wide_string const & path) : path_(path) {}

    /// As `nio::exists`.
    bool exists() const { return nio::exists(path_); }
    /// As `nio::is_directory`.
    bool is_directory() const { return nio::is_directory(path_); }

    /// The path as it was given.
    wide_string const & path() const { return path_; }
    wide_string & path() { return path_; }

private:
    wide_string path_;
};

} // namespace nio
