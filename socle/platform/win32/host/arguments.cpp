#include "socle/platform/win32/host/system.h"
#include "socle/platform/win32/paths/host_text.h"

#include <memory>
#include <shellapi.h>
#include <string_view>

namespace platform {

/// What `main` gets is in the ANSI page, which lacks most characters.
std::vector<narrow_string> arguments(int, char const * const *) {
    int count = 0;
    std::unique_ptr<wchar_t *, HLOCAL (*)(HLOCAL)> const texts(::CommandLineToArgvW(::GetCommandLineW(), &count),
                                                               ::LocalFree);
    std::vector<narrow_string> all;
    for (int i = 0; texts && i < count; ++i) {
        std::wstring_view const text = texts.get()[i];
        all.push_back(win32::to_utf8(wide_string(text.begin(), text.end())));
    }
    return all;
}

} // namespace platform
