#include "catalog/host_folder.h"

#include <system_error>
#include <utility>
#include <vector>
#include <windows.h>

#include <aclapi.h>

namespace host {

namespace {

[[noreturn]] void fail(char const * what, DWORD code = ::GetLastError()) {
    throw std::system_error(static_cast<int>(code), std::system_category(), what);
}

/// A handle of the system's, which has 32 significant bits, that is closed at the end of a block.
class handle {
public:
    explicit handle(HANDLE opened) : handle_(opened) {}
    handle(handle const &) = delete;
    handle & operator=(handle const &) = delete;
    ~handle() {
        if (good())
            ::CloseHandle(handle_);
    }

    bool good() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

HANDLE handle_of(std::intptr_t number) { return reinterpret_cast<HANDLE>(number); }
std::intptr_t number_of(HANDLE handle) { return reinterpret_cast<std::intptr_t>(handle); }

/// For its status alone, which nobody keeps others from; links themselves.
HANDLE open_for_status(std::wstring const & path) {
    constexpr DWORD share_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return ::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, share_all, nullptr, OPEN_EXISTING,
                         FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

bool is_link(HANDLE file, DWORD bits) {
    FILE_ATTRIBUTE_TAG_INFO info;
    return (bits & FILE_ATTRIBUTE_REPARSE_POINT) != 0
           && ::GetFileInformationByHandleEx(file, FileAttributeTagInfo, &info, sizeof info)
           && IsReparseTagNameSurrogate(info.ReparseTag);
}

uint64 joined(DWORD high, DWORD low) { return uint64{high} << 32 | low; }

status status_behind(HANDLE file) {
    status result;
    BY_HANDLE_FILE_INFORMATION found;
    if (::GetFileType(file) != FILE_TYPE_DISK || !::GetFileInformationByHandle(file, &found)) {
        result.kind = kind::other;
        return result;
    }
    bool const folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    result.kind = is_link(file, found.dwFileAttributes) ? kind::link : folder ? kind::folder : kind::file;
    result.size = folder ? 0 : joined(found.nFileSizeHigh, found.nFileSizeLow);
    result.stored = result.size;
    result.modified = joined(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime);
    result.created = joined(found.ftCreationTime.dwHighDateTime, found.ftCreationTime.dwLowDateTime);
    result.device = found.dwVolumeSerialNumber;
    result.number = joined(found.nFileIndexHigh, found.nFileIndexLow);
    result.names = found.nNumberOfLinks;
    // What a user has elsewhere, as far as there is a bit for it.
    bool const locked = !folder && (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    result.mode = folder ? 0755 : locked ? 0444 : 0644;
    return result;
}

bool look_at(std::wstring const & path, status & result) {
    handle const file(open_for_status(path));
    if (file.good())
        result = status_behind(file.get());
    return file.good();
}

bool is_nothing(DWORD code) {
    return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND || code == ERROR_INVALID_NAME;
}

/// Holds a folder: nobody can rename or remove it, nor one above it, meanwhile, so that its path leads to it.
std::intptr_t hold(std::wstring const & path, bool follow) {
    HANDLE const opened =
        ::CreateFileW(path.c_str(), FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES | READ_CONTROL,
                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                      FILE_FLAG_BACKUP_SEMANTICS | (follow ? 0u : DWORD{FILE_FLAG_OPEN_REPARSE_POINT}), nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        fail("cannot open the folder");
    if (status_behind(opened).kind != kind::folder) {
        ::CloseHandle(opened);
        fail("cannot open the folder", ERROR_DIRECTORY);
    }
    return number_of(opened);
}

/// In the form that leaves names as they are, and has no limit.
std::wstring whole_path(std::intptr_t folder) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        DWORD const size = ::GetFinalPathNameByHandleW(handle_of(folder), path.data(), static_cast<DWORD>(path.size()),
                                                       VOLUME_NAME_DOS);
        if (size == 0)
            fail("cannot open the folder");
        bool const fits = size < path.size();
        path.resize(size);
        if (fits)
            break;
    }
    return path.ends_with(L'\\') ? path.substr(0, path.size() - 1) : path;
}

std::wstring whole_path(std::intptr_t folder, narrow_string const & name) {
    return whole_path(folder) + L'\\' + path_of(name).native();
}

/// The form that people and programs know.
std::wstring usual(std::wstring const & path) {
    if (path.starts_with(L"\\\\?\\UNC\\"))
        return L'\\' + path.substr(7);
    return path.starts_with(L"\\\\?\\") ? path.substr(4) : path;
}

void flush(std::wstring const & path) {
    handle const file(::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (file.good() && !::FlushFileBuffers(file.get()))
        fail("cannot be brought to the disk");
}

} // namespace

folder::folder(narrow_string const & path, bool follow) : number_(hold(path_of(path).native(), follow)) {}

folder::folder(folder && other) noexcept : number_(std::exchange(other.number_, -1)) {}

folder::~folder() {
    if (number_ != -1)
        ::CloseHandle(handle_of(number_));
}

folder folder::inner(narrow_string const & name) const { return folder(hold(whole_path(number_, name), false)); }

bool folder::make(narrow_string const & name) const {
    if (::CreateDirectoryW(whole_path(number_, name).c_str(), nullptr))
        return true;
    if (::GetLastError() != ERROR_ALREADY_EXISTS)
        fail("cannot make the folder");
    return false;
}

void folder::move(narrow_string const & name, folder const & to, narrow_string const & new_name) const {
    if (!::MoveFileExW(whole_path(number_, name).c_str(), whole_path(to.number_, new_name).c_str(),
                       MOVEFILE_WRITE_THROUGH))
        fail("cannot be moved into place");
}

bool folder::remove(narrow_string const & name) const { return ::RemoveDirectoryW(whole_path(number_, name).c_str()); }

void folder::each(std::function<void(narrow_string const &, host::status const &)> const & visit) const {
    WIN32_FIND_DATAW entry;
    HANDLE const search = ::FindFirstFileExW(whole_path(number_, "*").c_str(), FindExInfoBasic, &entry,
                                             FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE && ::GetLastError() != ERROR_FILE_NOT_FOUND)
        fail("cannot be listed");
    if (search == INVALID_HANDLE_VALUE)
        return;
    struct closing {
        HANDLE search;
        ~closing() { ::FindClose(search); }
    } const at_end{search};
    do {
        auto const name = text_of(entry.cFileName);
        if (name == "." || name == "..")
            continue;
        auto const known = look(name);
        if (known.kind != kind::nothing)
            visit(name, known);
    } while (::FindNextFileW(search, &entry));
    if (::GetLastError() != ERROR_NO_MORE_FILES)
        fail("cannot be listed");
}

void folder::each_name(std::function<void(narrow_string const &)> const & visit) const {
    each([&](narrow_string const & name, host::status const &) { visit(name); });
}

status folder::status() const { return status_behind(handle_of(number_)); }

status folder::look(narrow_string const & name) const {
    struct status result;
    if (!look_at(whole_path(number_, name), result) && !is_nothing(::GetLastError()))
        fail("cannot be looked at");
    return result;
}

/// Who makes a file or folder owns it, unless the process makes them for a group.
bool folder::own() const {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (::GetSecurityInfo(handle_of(number_), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr,
                          nullptr, &descriptor)
        != ERROR_SUCCESS)
        return false;
    HANDLE opened = nullptr;
    ::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &opened);
    handle const token(opened);
    alignas(TOKEN_USER) char user[256];
    bool same = false;
    for (auto const which : {TokenUser, TokenOwner}) {
        DWORD size = 0;
        // Both begin with the identity.
        same = same
               || (::GetTokenInformation(token.get(), which, user, sizeof user, &size)
                   && ::EqualSid(owner, *reinterpret_cast<PSID *>(user)));
    }
    ::LocalFree(descriptor);
    return same;
}

narrow_string folder::path(narrow_string const & name) const { return text_of(usual(whole_path(number_, name))); }

narrow_string folder::path() const {
    auto const path = usual(whole_path(number_));
    return text_of(path.ends_with(L':') ? path + L'\\' : path);
}

/// Only an administrator may bring a whole file system to the disk.
void folder::sync() const {
    each([&](narrow_string const & name, host::status const & known) {
        if (known.kind == kind::file)
            flush(whole_path(number_, name));
    });
}

lock::lock(folder const & folder) {
    auto const status = folder.status();
    auto const name =
        L"Global\\socle.catalog." + std::to_wstring(status.device) + L'.' + std::to_wstring(status.number);
    // It goes with the last process that has it open.
    HANDLE const made = ::CreateMutexW(nullptr, FALSE, name.c_str());
    bool const first = made != nullptr && ::GetLastError() != ERROR_ALREADY_EXISTS;
    if (made != nullptr && !first)
        ::CloseHandle(made);
    number_ = first ? number_of(made) : -1;
}

lock::~lock() {
    if (held())
        ::CloseHandle(handle_of(number_));
}

status status_of(narrow_string const & path) {
    status result;
    if (!look_at(path_of(path).native(), result) && !is_nothing(::GetLastError()))
        fail("cannot be looked at");
    return result;
}

void hold_many_folders() {} // as many as there is memory for

void make_private() {} // the folder says whose it is

std::vector<stretch> stretches_of(narrow_string const &, status const & known) { return {{0, known.size}}; }

} // namespace host
