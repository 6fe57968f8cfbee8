#include "socle/platform/error_text.h"

#include "socle/platform/errors.h"

namespace platform {

narrow_string system_error_text(uint32 code) {
    char buffer[256];
    uint32 const size = FormatMessageA(code, buffer, sizeof buffer);
    if (size == 0)
        return "unknown error";
    narrow_string text(buffer, size);
    text.erase(text.find_last_not_of("\r\n.") + 1);
    return text;
}

} // namespace platform
