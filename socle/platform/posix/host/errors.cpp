#include "socle/platform/errors.h"

#include "socle/platform/error_messages.h"

#include <algorithm>

namespace platform {

namespace {

thread_local uint32 last_error = 0;

} // namespace

uint32 GetLastError() { return last_error; }

void SetLastError(uint32 code) { last_error = code; }

uint32 FormatMessageA(uint32 code, char * buffer, uint32 size) {
    std::string_view const text = error_message(code);
    if (text.empty() || text.size() >= size)
        return 0;
    *std::copy(text.begin(), text.end(), buffer) = '\0';
    return static_cast<uint32>(text.size());
}

} // namespace platform
