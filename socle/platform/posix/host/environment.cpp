#include "socle/platform/environment.h"

#include "socle/platform/ansi_text.h"
#include "socle/platform/host.h"
#include "socle/platform/host_names.h"

#include <cstdlib>

namespace platform {

bool _wgetenv(char const * name, wide_string & value) {
    char const * const text = std::getenv(name);
    if (text != nullptr)
        value = from_host_text(text);
    return text != nullptr;
}

bool getenv(char const * name, narrow_string & value) {
    wide_string text;
    if (!_wgetenv(name, text))
        return false;
    value = to_ansi(text);
    return true;
}

std::vector<narrow_string> arguments(int argc, char const * const * argv) { return {argv, argv + argc}; }

uint32 GetVersionExA() { return VER_PLATFORM_WIN32_NT; }

} // namespace platform
