#include "socle/platform/folders.h"

#include "socle/platform/win32/files/file_search.h"
#include "socle/platform/win32/files/links.h"
#include "socle/platform/win32/paths/system_path.h"
#include "socle/platform/win32/paths/volumes.h"

#include <cwchar>

namespace platform {

/// Its handle does not share deletion: nobody moves or removes the folder meanwhile, nor one above it, and so its path
/// leads to it.
struct open_folder::held {
    held(HANDLE opened, std::wstring_view full) : handle(opened), path(full.begin(), full.end()) {
        if (path.ends_with(u'\\'))
            path.pop_back();
    }

    win32::handle_closer handle;
    wide_string path; // in the form that leaves names as they are
};

namespace {

bool is_folder(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION found;
    return ::GetFileInformationByHandle(file, &found) && (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::unique_ptr<open_folder::held> hold(wide_string const & path, bool follow_link) {
    win32::system_path const system(path, win32::path_form::names_as_they_are);
    if (!system)
        return nullptr;
    HANDLE const handle = ::CreateFileW(
        system, FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
        FILE_FLAG_BACKUP_SEMANTICS | (follow_link ? 0 : FILE_FLAG_OPEN_REPARSE_POINT), nullptr);
    if (!win32::report(win32::file_of(handle) != win32::no_file))
        return nullptr;
    auto opened = std::make_unique<open_folder::held>(handle, static_cast<wchar_t const *>(system));
    bool const folder = is_folder(handle) && (follow_link || !win32::is_folder_link(system));
    return win32::report_code(folder ? 0 : ERROR_DIRECTORY) ? std::move(opened) : nullptr;
}

/// The path of an entry; empty, with a last error, for what is not one name.
wide_string path_of(open_folder const & folder, wide_string const & name) {
    bool const one = !name.empty() && name != u"." && name != u".."
                     && name.find_first_of(std::u16string_view(u"\\/\0", 3)) == wide_string::npos;
    bool const good = win32::report_code(!folder.is_open() ? ERROR_INVALID_HANDLE : one ? 0 : ERROR_INVALID_NAME);
    return good ? folder.get()->path + u'\\' + name : wide_string();
}

/// What `call` gives for the path of an entry, or `failed` if there is none.
template <typename Result, typename Call>
Result with_entry(open_folder const & folder, wide_string const & name, Result failed, Call call) {
    wide_string const path = path_of(folder, name);
    return path.empty() ? failed : call(path);
}

} // namespace

open_folder::open_folder() = default;
open_folder::open_folder(open_folder &&) noexcept = default;
open_folder & open_folder::operator=(open_folder &&) noexcept = default;
open_folder::~open_folder() = default;

bool open_folder::open(wide_string const & path) { return open(path, false); }

bool open_folder::open_target(wide_string const & path) { return open(path, true); }

bool open_folder::open(wide_string const & path, bool follow_link) {
    held_ = hold(path, follow_link);
    return is_open();
}

bool open_folder::open(open_folder & above, wide_string const & name) {
    wide_string const path = path_of(above, name);
    bool const stream = name.find(u':') != wide_string::npos;
    held_ = path.empty() || !win32::report_code(stream ? ERROR_INVALID_NAME : 0) ? nullptr : hold(path, false);
    return is_open();
}

void open_folder::close() { held_.reset(); }

file_search * FindFirstFileW(open_folder const & folder, WIN32_FIND_DATAW & data) {
    if (!win32::report_code(folder.is_open() ? 0 : ERROR_INVALID_HANDLE))
        return nullptr;
    return win32::begin_search(folder.get()->path + u"\\*", true, data);
}

uint32 GetFileKindW(open_folder const & folder, wide_string const & name) {
    return with_entry(folder, name, INVALID_FILE_ATTRIBUTES, [](auto const & path) { return GetFileKindW(path); });
}

uint32 GetFileAttributesW(open_folder const & folder, wide_string const & name) {
    return with_entry(folder, name, INVALID_FILE_ATTRIBUTES,
                      [](auto const & path) { return GetFileAttributesW(path); });
}

bool GetFileAttributesExW(open_folder const & folder, wide_string const & name, WIN32_FILE_ATTRIBUTE_DATA & data) {
    return with_entry(folder, name, false, [&](auto const & path) { return GetFileAttributesExW(path, data); });
}

bool SetFileAttributesW(open_folder const & folder, wide_string const & name, uint32 attributes) {
    return with_entry(folder, name, false, [&](auto const & path) { return SetFileAttributesW(path, attributes); });
}

int CreateFileW(open_folder const & folder, wide_string const & name, uint32 access, uint32 sharing, uint32 disposition,
                uint32 flags) {
    return with_entry(folder, name, win32::no_file,
                      [&](auto const & path) { return CreateFileW(path, access, sharing, disposition, flags); });
}

bool DeleteFileW(open_folder const & folder, wide_string const & name) {
    return with_entry(folder, name, false, [](auto const & path) { return DeleteFileW(path); });
}

bool CreateDirectoryW(open_folder const & folder, wide_string const & name) {
    return with_entry(folder, name, false, [](auto const & path) { return CreateDirectoryW(path); });
}

bool RemoveDirectoryW(open_folder const & folder, wide_string const & name) {
    return with_entry(folder, name, false, [](auto const & path) { return RemoveDirectoryW(path); });
}

bool GetVolumeInformationW(open_folder const & folder, wide_string const & name, wide_string & file_system) {
    wide_string const path = path_of(folder, name);
    if (path.empty())
        return false;
    if (win32::volume const * const on = win32::volume_at(win32::with_limit(path))) {
        file_system = on->file_system;
        return true;
    }
    wchar_t root[MAX_PATH + 1];
    std::wstring const text(path.begin(), path.end());
    return win32::report(::GetVolumePathNameW(text.c_str(), root, MAX_PATH + 1))
           && GetVolumeInformationW(wide_string(root, root + std::wcslen(root)), file_system);
}

bool MoveFileW(open_folder const & from, wide_string const & name, open_folder const & to,
               wide_string const & new_name) {
    return with_entry(from, name, false, [&](auto const & source) {
        return with_entry(to, new_name, false, [&](auto const & target) { return MoveFileW(source, target); });
    });
}

} // namespace platform
