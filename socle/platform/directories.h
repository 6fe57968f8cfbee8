#pragma once

#include "socle/basic/types.h"

#include <memory>

namespace platform {

/// Makes one directory. 183 if anything is there.
bool CreateDirectoryW(wide_string const & path);

/// Removes an empty directory with its named streams, or a link to a directory. 145 if it is not empty, 267 for a file.
bool RemoveDirectoryW(wide_string const & path);

/// An entry as the search found it. Of its attributes a host may list the kind alone, as GetFileKindW tells it.
struct WIN32_FIND_DATAW {
    uint32 dwFileAttributes = 0;
    wide_string cFileName;
};

struct WIN32_FIND_DATAA {
    uint32 dwFileAttributes = 0;
    narrow_string cFileName;
};

/// A search under way. One thread at a time may use it.
struct file_search;

/// Begins a search for `folder\*`, all that the folder holds, or for one name without a wildcard, and finds its first
/// entry; null if there is none. A name is answered without reading any folder.
///
/// A whole folder comes with "." and ".." first, then by unit in upper case, ties by unit, as it was when the search
/// began. Changes in the folder do not disturb it.
file_search * FindFirstFileW(wide_string const & pattern, WIN32_FIND_DATAW & data);
/// False at the end, with 18.
bool FindNextFileW(file_search * search, WIN32_FIND_DATAW & data);

/// The same in the ANSI page, without the names that do not come back from it as they are.
file_search * FindFirstFileA(narrow_string const & pattern, WIN32_FIND_DATAA & data);
bool FindNextFileA(file_search * search, WIN32_FIND_DATAA & data);

void FindClose(file_search * search);

struct search_end {
    void operator()(file_search * search) const { FindClose(search); }
};

/// A search that ends with its owner.
using search_handle = std::unique_ptr<file_search, search_end>;

} // namespace platform
