#include "socle/platform/win32/paths/volumes.h"

#include "socle/platform/win32/paths/system_path.h"

#include <algorithm>
#include <vector>

namespace platform {

namespace win32 {

namespace {

std::vector<volume> & table() {
    static std::vector<volume> volumes;
    return volumes;
}

/// In capitals; 0 for what is no letter.
wchar_t letter_of(wchar_t unit) {
    wchar_t const capital = unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - L'a' + L'A') : unit;
    return capital >= L'A' && capital <= L'Z' ? capital : L'\0';
}

bool same_text(std::wstring_view a, std::wstring_view b) {
    return ::CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE)
           == CSTR_EQUAL;
}

bool has_streams(std::wstring const & folder) {
    wchar_t root[MAX_PATH + 1];
    DWORD flags = 0;
    return ::GetVolumePathNameW(folder.c_str(), root, MAX_PATH + 1)
           && ::GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0)
           && (flags & FILE_NAMED_STREAMS) != 0;
}

uint32 attach(wchar_t letter, wide_string const & folder, wide_string const & file_system) {
    if (letter == L'\0')
        return ERROR_INVALID_PARAMETER;
    bool const used = (::GetLogicalDrives() >> (letter - L'A') & 1) != 0;
    if (letter == L'C' || used || volume_of_letter({&letter, 1}) != nullptr)
        return ERROR_ALREADY_EXISTS;
    std::wstring top = full_path(folder);
    DWORD const bits = ::GetFileAttributesW(top.c_str());
    if (top.empty() || bits == INVALID_FILE_ATTRIBUTES || (bits & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return ERROR_PATH_NOT_FOUND;
    if (file_system == u"NTFS" && !has_streams(top))
        return ERROR_NOT_SUPPORTED;
    if (top.back() == L'\\')
        top.pop_back();
    table().push_back({letter, top, file_system});
    return 0;
}

} // namespace

volume const * volume_of_letter(std::wstring_view full) {
    auto const & volumes = table();
    auto const found = std::find_if(volumes.begin(), volumes.end(),
                                    [&](volume const & v) { return v.letter == letter_of(full.front()); });
    return found == volumes.end() || (full.size() > 1 && full[1] != L':') ? nullptr : &*found;
}

volume const * volume_at(std::wstring_view full) {
    volume const * found = nullptr;
    for (volume const & v : table()) {
        std::size_t const size = v.folder.size();
        bool const inside = same_text(full.substr(0, size), v.folder) && (full.size() == size || full[size] == L'\\');
        if (inside && (found == nullptr || size >= found->folder.size()))
            found = &v;
    }
    return found;
}

} // namespace win32

uint32 attach_volume(char letter, narrow_string const & folder, narrow_string const & file_system) {
    wchar_t const capital = win32::letter_of(static_cast<unsigned char>(letter));
    uint32 const code = win32::attach(capital, from_host(folder), from_host(file_system));
    win32::report_code(code);
    return code;
}

uint32 sweep_volume(char letter) {
    wchar_t const capital = win32::letter_of(static_cast<unsigned char>(letter));
    bool const found = std::any_of(win32::table().begin(), win32::table().end(),
                                   [&](win32::volume const & v) { return v.letter == capital; });
    uint32 const code = found ? 0 : ERROR_PATH_NOT_FOUND; // the disk itself keeps the streams
    win32::report_code(code);
    return code;
}

uint32 detach_volume(char letter) {
    wchar_t const capital = win32::letter_of(static_cast<unsigned char>(letter));
    bool const found = std::erase_if(win32::table(), [&](win32::volume const & v) { return v.letter == capital; }) > 0;
    uint32 const code = found ? 0 : ERROR_PATH_NOT_FOUND;
    win32::report_code(code);
    return code;
}

} // namespace platform
