#include "socle/platform/win32/paths/host_text.h"
#include "socle/platform/win32/paths/system_path.h"
#include "socle/platform/win32/paths/volumes.h"

#include <algorithm>

namespace platform {

namespace win32 {

namespace {

/// The longest path that every call takes as it is: one for a folder leaves room for a short name in it.
constexpr std::size_t longest_plain_path = 247;

constexpr std::u16string_view as_it_is = u"\\\\?\\";

std::wstring without_limit(std::wstring const & full) {
    if (full.starts_with(L"\\\\?\\") || full.starts_with(L"\\\\.\\"))
        return full;
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

/// The path that an attached volume's letter stands for.
std::wstring on_system_volume(std::wstring const & full) {
    volume const * const on = volume_of_letter(full);
    return on != nullptr ? on->folder + full.substr(2) : full;
}

} // namespace

std::wstring with_limit(wide_string const & path) {
    std::wstring const text(path.begin(), path.end());
    if (text.starts_with(L"\\\\?\\UNC\\"))
        return L"\\\\" + text.substr(8);
    return text.starts_with(L"\\\\?\\") ? text.substr(4) : text;
}

std::wstring full_path(wide_string const & path) {
    if (path.empty() || path.find(u'\0') != wide_string::npos) {
        SetLastError(path.empty() ? ERROR_PATH_NOT_FOUND : ERROR_INVALID_NAME);
        return {};
    }
    std::wstring const given(path.begin(), path.end());
    std::wstring full(MAX_PATH, L'\0');
    // The working directory may change between two calls.
    for (;;) {
        DWORD const size = ::GetFullPathNameW(given.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        bool const fits = size < full.size();
        full.resize(size);
        if (fits) {
            report(size > 0);
            return full;
        }
    }
}

system_path::system_path(wide_string const & path, path_form form) {
    bool const settled = path.starts_with(as_it_is) && path.find(u'\0') == wide_string::npos;
    text_ = settled ? std::wstring(path.begin(), path.end()) : full_path(path);
    if (settled || text_.empty())
        return;
    text_ = on_system_volume(text_);
    if (form == path_form::names_as_they_are || text_.size() > longest_plain_path)
        text_ = without_limit(text_);
}

} // namespace win32

struct held_paths::folders {};

held_paths::held_paths() = default;
held_paths::~held_paths() = default;

bool IsParentThere(wide_string const & path) {
    std::size_t const separator = path.find_last_of(u"\\/");
    if (separator == wide_string::npos || separator + 1 == path.size() || path.back() == u'.')
        return false;
    uint32 const kind = GetFileKindW(path.substr(0, separator + 1));
    return kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool GetFullPathNameW(wide_string const & path, wide_string & full) {
    std::wstring text = win32::full_path(path);
    if (text.empty())
        return false;
    if (win32::volume const * const on = win32::volume_at(text)) {
        std::wstring const inside = text.substr(on->folder.size());
        text = std::wstring{on->letter, L':'} + (inside.empty() ? L"\\" : inside);
    }
    full.assign(text.begin(), text.end());
    return true;
}

bool GetVolumeInformationW(wide_string const & root, wide_string & file_system) {
    std::wstring const full = win32::full_path(root);
    if (full.empty())
        return false;
    if (win32::volume const * const on = win32::volume_of_letter(full)) {
        file_system = on->file_system;
        return true;
    }
    wchar_t name[MAX_PATH + 1];
    DWORD flags = 0;
    if (!win32::report(::GetVolumeInformationW(full.c_str(), nullptr, 0, nullptr, nullptr, &flags, name, MAX_PATH + 1)))
        return false;
    std::wstring_view text = name;
    // File servers call themselves so without having any.
    if (text == L"NTFS" && (flags & FILE_NAMED_STREAMS) == 0)
        text = L"NTFS without named streams";
    file_system.assign(text.begin(), text.end());
    return true;
}

wide_string from_host(narrow_string const & path) {
    wide_string text = win32::from_utf8(path);
    std::replace(text.begin(), text.end(), u'/', u'\\');
    return text;
}

narrow_string to_host(wide_string const & path) {
    if (path.find(u'\0') != wide_string::npos) {
        SetLastError(ERROR_INVALID_NAME);
        return {};
    }
    std::wstring const text(path.begin(), path.end());
    win32::volume const * const on = win32::volume_of_letter(text);
    if (on == nullptr)
        return win32::to_utf8(path);
    wide_string host(on->folder.begin(), on->folder.end());
    std::u16string_view const inside = std::u16string_view(path).substr(2);
    if (!inside.starts_with(u'\\') && !inside.starts_with(u'/'))
        host += u'\\';
    return win32::to_utf8(host.append(inside));
}

} // namespace platform
