#include "library.h"

#include <socle/platform/host.h>

#include <system_error>
#include <windows.h>

namespace host {

// By the whole path, as the system looks for a mere name elsewhere, too; what the library needs may lie beside it.
void * load(narrow_string const & path, narrow_string & failure) {
    wide_string const name = platform::from_host(path + ".dll");
    std::wstring const given(name.begin(), name.end());
    std::wstring whole(32768, L'\0');
    whole.resize(GetFullPathNameW(given.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    void * const library = LoadLibraryExW(whole.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == nullptr)
        failure = std::system_category().message(static_cast<int>(GetLastError()));
    return library;
}

void * find(void * library, char const * name) {
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void unload(void * library) { FreeLibrary(static_cast<HMODULE>(library)); }

} // namespace host
