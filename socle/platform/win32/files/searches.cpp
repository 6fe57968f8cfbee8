#include "socle/platform/ansi_text.h"
#include "socle/platform/win32/files/file_search.h"
#include "socle/platform/win32/files/links.h"
#include "socle/platform/win32/paths/system_path.h"

#include <memory>

namespace platform {

namespace {

bool is_dots(std::u16string_view name) { return name == u"." || name == u".."; }

void take(::WIN32_FIND_DATAW const & found, WIN32_FIND_DATAW & data) {
    std::wstring_view const name = found.cFileName;
    data.cFileName.assign(name.begin(), name.end());
    bool const link = win32::is_link(found);
    data.dwFileAttributes =
        (found.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_REPARSE_POINT}) | (link ? FILE_ATTRIBUTE_REPARSE_POINT : 0);
}

/// The entry in the ANSI page, unless its name does not come back from it as it is.
bool take(WIN32_FIND_DATAW const & wide, WIN32_FIND_DATAA & data) {
    data = {wide.dwFileAttributes, to_ansi(wide.cFileName)};
    return from_ansi(data.cFileName) == wide.cFileName;
}

} // namespace

namespace win32 {

file_search * begin_search(wide_string const & pattern, bool entries_only, WIN32_FIND_DATAW & data) {
    system_path const system(pattern);
    if (!system)
        return nullptr;
    ::WIN32_FIND_DATAW found;
    HANDLE const handle =
        ::FindFirstFileExW(system, FindExInfoBasic, &found, FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (!report(file_of(handle) != no_file))
        return nullptr;
    auto search = std::make_unique<file_search>(handle, entries_only);
    take(found, data);
    bool const there = !(entries_only && is_dots(data.cFileName)) || FindNextFileW(search.get(), data);
    return there ? search.release() : nullptr;
}

} // namespace win32

file_search * FindFirstFileW(wide_string const & pattern, WIN32_FIND_DATAW & data) {
    return win32::begin_search(pattern, false, data);
}

bool FindNextFileW(file_search * search, WIN32_FIND_DATAW & data) {
    ::WIN32_FIND_DATAW found;
    do {
        if (!win32::report(::FindNextFileW(search->handle, &found)))
            return false;
        take(found, data);
    } while (search->entries_only && is_dots(data.cFileName));
    return true;
}

file_search * FindFirstFileA(narrow_string const & pattern, WIN32_FIND_DATAA & data) {
    WIN32_FIND_DATAW first;
    std::unique_ptr<file_search> search(FindFirstFileW(from_ansi(pattern), first));
    bool const there = search != nullptr && (take(first, data) || FindNextFileA(search.get(), data));
    return there ? search.release() : nullptr;
}

bool FindNextFileA(file_search * search, WIN32_FIND_DATAA & data) {
    for (WIN32_FIND_DATAW wide; FindNextFileW(search, wide);)
        if (take(wide, data))
            return true;
    return false;
}

void FindClose(file_search * search) { delete search; }

} // namespace platform
