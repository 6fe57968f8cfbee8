#include "socle/platform/ansi_text.h"
#include "socle/platform/win32/host/system.h"

#include <string_view>

namespace platform {

bool _wgetenv(char const * name, wide_string & value) {
    std::string_view const letters = name;
    std::wstring const wide(letters.begin(), letters.end());
    // It may grow between two calls.
    std::wstring text;
    DWORD size = ::GetEnvironmentVariableW(wide.c_str(), nullptr, 0);
    while (size > text.size()) {
        text.resize(size);
        size = ::GetEnvironmentVariableW(wide.c_str(), text.data(), size);
    }
    if (size == 0 && ::GetLastError() == ERROR_ENVVAR_NOT_FOUND)
        return false;
    value.assign(text.begin(), text.begin() + size);
    return true;
}

bool getenv(char const * name, narrow_string & value) {
    wide_string text;
    if (!_wgetenv(name, text))
        return false;
    value = to_ansi(text);
    return true;
}

uint32 GetVersionExA() { return VER_PLATFORM_WIN32_NT; }

} // namespace platform
