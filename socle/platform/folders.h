#pragma once

#include "socle/platform/directories.h"
#include "socle/platform/files.h"

#include <memory>

namespace platform {

/// A folder that is held open. It stays that folder, whatever becomes of its name: what is done with an entry is done
/// in it, and never in what has been put in its place. One thread at a time may use it.
///
/// Going down into a tree, open each folder in the one above, and close it before that one is used again:
///
///     void visit(open_folder & folder) {
///         for (each entry that FindFirstFileW(folder, ...) and FindNextFileW find) {
///             open_folder below;
///             if (it is a folder && below.open(folder, its name))
///                 visit(below);
///         }
///     }
///
/// A tree may be deeper than the process has handles for: folders far above the last one are closed meanwhile, and
/// opened again on the way back, from below. If the folder above is another by then, as the lower one was moved away,
/// every call in it fails with ERROR_PATH_NOT_FOUND.
class open_folder {
public:
    open_folder();
    open_folder(open_folder &&) noexcept;
    open_folder & operator=(open_folder &&) noexcept;
    ~open_folder();

    /// Opens the folder at `path`. A last element that is a link is not followed: 267, as for a file. False on failure.
    bool open(wide_string const & path);
    /// The same, but a link is followed.
    bool open_target(wide_string const & path);
    /// Opens the folder `name` in `above`, which must outlive this one; a link is not followed.
    bool open(open_folder & above, wide_string const & name);
    void close();
    bool is_open() const { return held_ != nullptr; }

    /// How a system holds it.
    struct held;
    held * get() const { return held_.get(); }

private:
    bool open(wide_string const & path, bool follow_link);

    std::unique_ptr<held> held_;
};

/// The calls of the same names on an entry of an open folder. `name` is one name, which may go on with a named stream
/// of the entry: 123 for a path, "." and "..". A search finds all entries but "." and "..", in the order of a search
/// for `*`, as they are now.
file_search * FindFirstFileW(open_folder const & folder, WIN32_FIND_DATAW & data);
uint32 GetFileKindW(open_folder const & folder, wide_string const & name);
uint32 GetFileAttributesW(open_folder const & folder, wide_string const & name);
bool GetFileAttributesExW(open_folder const & folder, wide_string const & name, WIN32_FILE_ATTRIBUTE_DATA & data);
bool SetFileAttributesW(open_folder const & folder, wide_string const & name, uint32 attributes);
int CreateFileW(open_folder const & folder, wide_string const & name, uint32 access, uint32 sharing, uint32 disposition,
                uint32 flags);
bool DeleteFileW(open_folder const & folder, wide_string const & name);
bool CreateDirectoryW(open_folder const & folder, wide_string const & name);
bool RemoveDirectoryW(open_folder const & folder, wide_string const & name);
bool MoveFileW(open_folder const & from, wide_string const & name, open_folder const & to,
               wide_string const & new_name);
/// The name of the file system that the entry is on.
bool GetVolumeInformationW(open_folder const & folder, wide_string const & name, wide_string & file_system);

} // namespace platform
