#include "tests/support/system.h"

#include <cstdlib>
#include <stdexcept>
#include <windows.h>

namespace support {

namespace fs = std::filesystem;

namespace {

/// Whether this is no system of its own, but runs on another: that one removes the folder in which a test runs.
bool runs_on_a_host() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

/// An empty file for a probe, with a handle to it.
class probe {
public:
    probe() : folder_(make_folder()), file_(folder_ / "probe") {
        handle_ =
            CreateFileW(file_.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr);
    }
    probe(probe const &) = delete;
    probe & operator=(probe const &) = delete;
    ~probe() {
        CloseHandle(handle_);
        remove_folder(folder_);
    }

    fs::path const & folder() const { return folder_; }
    fs::path const & file() const { return file_; }
    HANDLE handle() const { return handle_; }

private:
    fs::path folder_, file_;
    HANDLE handle_;
};

std::string probe_links() {
    probe const made;
    fs::path const link = made.folder() / "link";
    make_link("probe", link);
    DWORD const bits = GetFileAttributesW(link.c_str());
    if (bits == INVALID_FILE_ATTRIBUTES)
        return "the system makes no links";
    WIN32_FIND_DATAW found;
    HANDLE const search = FindFirstFileW(link.c_str(), &found);
    FindClose(search);
    bool const known = (bits & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(found.dwReserved0);
    return known ? "" : "the system does not tell links from what they lead to";
}

} // namespace

fs::path path_of(std::string const & text) { return std::u8string(text.begin(), text.end()); }

std::string text_of(fs::path const & path) {
    std::u8string const text = path.u8string();
    return {text.begin(), text.end()};
}

fs::path make_folder(fs::path const & parent) {
    static int count = 0;
    fs::path const folder = (parent.empty() ? fs::current_path() : parent)
                            / ("socle_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count));
    fs::create_directory(folder);
    return folder;
}

void remove_folder(fs::path const & folder) {
    std::error_code ignored;
    // A host's removal of a link to a folder may take what it leads to.
    if (!runs_on_a_host())
        fs::remove_all(folder, ignored);
}

bool is_there(fs::path const & path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

void set_variable(char const * name, char const * value) {
    _wputenv_s(path_of(name).c_str(), value != nullptr ? path_of(value).c_str() : L"");
}

void make_link(std::string const & target, fs::path const & link) {
    fs::path to = path_of(target);
    to.make_preferred();
    DWORD const bits = GetFileAttributesW((link.parent_path() / to).c_str());
    bool const folder = bits != INVALID_FILE_ATTRIBUTES && (bits & FILE_ATTRIBUTE_DIRECTORY) != 0;
    DWORD const flags = folder ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
    CreateSymbolicLinkW(link.c_str(), to.c_str(), flags | SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE);
}

bool make_fifo(fs::path const &) { return false; }

bool make_pipe(int (&ends)[2]) {
    HANDLE from = nullptr, to = nullptr;
    bool const made = CreatePipe(&from, &to, nullptr, 0);
    ends[0] = static_cast<int>(reinterpret_cast<std::intptr_t>(from));
    ends[1] = static_cast<int>(reinterpret_cast<std::intptr_t>(to));
    return made;
}

bool make_read_only(fs::path const & file) {
    return SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY)
           && (GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY) != 0;
}

bool tells_case() { return false; }

standard_input::standard_input() : before_(reinterpret_cast<std::intptr_t>(GetStdHandle(STD_INPUT_HANDLE))) {}

standard_input::~standard_input() { SetStdHandle(STD_INPUT_HANDLE, reinterpret_cast<HANDLE>(before_)); }

void standard_input::comes_from(fs::path const & file) {
    SetStdHandle(STD_INPUT_HANDLE, CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                               OPEN_EXISTING, 0, nullptr));
}

void standard_input::close() { SetStdHandle(STD_INPUT_HANDLE, nullptr); }

library::library(fs::path const & file) : loaded_(LoadLibraryW(fs::absolute(file).make_preferred().c_str())) {}

library::~library() {
    if (loaded_ != nullptr)
        FreeLibrary(static_cast<HMODULE>(loaded_));
}

void (*library::find(char const * name) const)() {
    FARPROC const found = loaded_ != nullptr ? GetProcAddress(static_cast<HMODULE>(loaded_), name) : nullptr;
    return reinterpret_cast<void (*)()>(found);
}

bool library::is_loaded(fs::path const & file) {
    return GetModuleHandleW(fs::absolute(file).make_preferred().c_str()) != nullptr;
}

guarded_memory::guarded_memory()
    : start_(static_cast<char *>(VirtualAlloc(nullptr, 3 * page, MEM_RESERVE, PAGE_NOACCESS))) {
    if (VirtualAlloc(start_ + page, page, MEM_COMMIT, PAGE_READWRITE) == nullptr)
        throw std::runtime_error("there is no memory");
}

guarded_memory::~guarded_memory() { VirtualFree(start_, 0, MEM_RELEASE); }

bool shares_type_information() { return false; } // g++ puts it into each that throws

bool starts_in_locales() { return false; }

bool is_in_locale(std::string const & locale) {
    UINT const page = locale.starts_with("ru") ? 1251 : locale.starts_with("ja") ? 932 : 1252;
    return GetACP() == page;
}

std::string limit_of_links() {
    static std::string const limit = probe_links();
    return limit;
}

std::string limit_of_creation_times() {
    probe const made;
    FILETIME const set = {0x1C5D8000, 0x01C073BA};
    FILETIME got{};
    bool const kept = SetFileTime(made.handle(), &set, nullptr, nullptr)
                      && GetFileTime(made.handle(), &got, nullptr, nullptr) && CompareFileTime(&set, &got) == 0;
    return kept ? "" : "the system keeps no creation times";
}

std::string limit_of_resizing() {
    probe const made;
    HANDLE const reader = CreateFileW(made.file().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    bool const told = !SetEndOfFile(reader) && GetLastError() == ERROR_ACCESS_DENIED;
    CloseHandle(reader);
    return told ? "" : "the system does not say that access is denied where the end of a file cannot be set";
}

std::string limit_of_times() {
    fs::path const folder = make_folder();
    fs::path const file = folder / "locked";
    CloseHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    make_read_only(file);
    HANDLE const handle = CreateFileW(file.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    bool const opened = handle != INVALID_HANDLE_VALUE;
    if (opened)
        CloseHandle(handle);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    remove_folder(folder);
    return opened ? "" : "the system opens a file that cannot be written for its times neither";
}

std::string limit_of_processes() { return {}; }

} // namespace support
