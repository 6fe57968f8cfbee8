#include "socle/platform/win32/files/links.h"
#include "socle/platform/win32/paths/system_path.h"

namespace platform {

namespace win32 {

bool is_link(wchar_t const * path, DWORD attributes) {
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return false;
    // A search tells the tag of what it finds without opening it.
    ::WIN32_FIND_DATAW found;
    HANDLE const search = ::FindFirstFileExW(path, FindExInfoBasic, &found, FindExSearchNameMatch, nullptr, 0);
    if (file_of(search) == no_file)
        return false;
    ::FindClose(search);
    return is_link(found);
}

bool is_folder_link(wchar_t const * path) {
    DWORD const bits = ::GetFileAttributesW(path);
    return (bits & FILE_ATTRIBUTE_DIRECTORY) != 0 && is_link(path, bits);
}

HANDLE open_target(wchar_t const * path, DWORD access) {
    auto const open = [&](DWORD flags) {
        constexpr DWORD share_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        return ::CreateFileW(path, access, share_all, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags,
                             nullptr);
    };
    HANDLE const target = open(0);
    if (file_of(target) != no_file)
        return target;
    DWORD const code = ::GetLastError();
    bool const lost =
        code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND || code == ERROR_CANT_RESOLVE_FILENAME;
    DWORD const bits = lost ? ::GetFileAttributesW(path) : INVALID_FILE_ATTRIBUTES;
    if (is_link(path, bits))
        return open(FILE_FLAG_OPEN_REPARSE_POINT);
    ::SetLastError(code);
    return target;
}

namespace {

/// Sets the bits of what a link leads to.
bool set_attributes_behind(wchar_t const * link, DWORD attributes) {
    handle_closer const target(open_target(link, FILE_WRITE_ATTRIBUTES));
    FILE_BASIC_INFO info{}; // 0 leaves what it stands for as it is
    info.FileAttributes = attributes;
    return target.open() && ::SetFileInformationByHandle(target.get(), FileBasicInfo, &info, sizeof info);
}

/// What a link leads to, with the bit of links; of the link itself if that is nothing.
void follow_link(wchar_t const * path, WIN32_FILE_ATTRIBUTE_DATA & data) {
    handle_closer const target(open_target(path, FILE_READ_ATTRIBUTES));
    BY_HANDLE_FILE_INFORMATION found;
    if (target.open() && ::GetFileInformationByHandle(target.get(), &found))
        data = {found.dwFileAttributes | FILE_ATTRIBUTE_REPARSE_POINT, units_of(found.ftCreationTime),
                units_of(found.ftLastWriteTime)};
}

} // namespace

} // namespace win32

uint32 GetFileKindW(wide_string const & path) {
    win32::system_path const system(path);
    if (!system)
        return INVALID_FILE_ATTRIBUTES;
    DWORD const bits = ::GetFileAttributesW(system);
    if (!win32::report(bits != INVALID_FILE_ATTRIBUTES))
        return INVALID_FILE_ATTRIBUTES;
    return (bits & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE))
           | (win32::is_link(system, bits) ? FILE_ATTRIBUTE_REPARSE_POINT : 0);
}

uint32 GetFileAttributesW(wide_string const & path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    return GetFileAttributesExW(path, data) ? data.dwFileAttributes : INVALID_FILE_ATTRIBUTES;
}

bool GetFileAttributesExW(wide_string const & path, WIN32_FILE_ATTRIBUTE_DATA & data) {
    win32::system_path const system(path);
    ::WIN32_FILE_ATTRIBUTE_DATA found;
    if (!system || !win32::report(::GetFileAttributesExW(system, GetFileExInfoStandard, &found)))
        return false;
    data = {found.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_REPARSE_POINT}, win32::units_of(found.ftCreationTime),
            win32::units_of(found.ftLastWriteTime)};
    if (win32::is_link(system, found.dwFileAttributes)) {
        data.dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        win32::follow_link(system, data);
    }
    return true;
}

bool SetFileAttributesW(wide_string const & path, uint32 attributes) {
    constexpr uint32 settable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM
                                | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_TEMPORARY;
    win32::system_path const system(path);
    if (!system)
        return false;
    DWORD const bits = (attributes & settable) != 0 ? attributes & settable : DWORD{FILE_ATTRIBUTE_NORMAL};
    bool const link = win32::is_link(system, ::GetFileAttributesW(system));
    return win32::report(link ? win32::set_attributes_behind(system, bits) : ::SetFileAttributesW(system, bits) != 0);
}

} // namespace platform
