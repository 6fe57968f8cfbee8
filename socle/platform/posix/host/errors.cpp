#include "socle/platform/errors.h"

#include "socle/platform/error_messages.h"

#include <algorithm>

namespace platform {

namespace {

thread_local uint32 code_of_last_failure = 0;

} // namespace

uint32 GetLastError() { return code_of_last_failure; }

void SetLastError(uint32 code) { code_of_last_failure = code; }

uint32 FormatMessageA(uint32 code, char * buffer, uint32 size) {
    std::string_view const text = error_message(code);
    if (text.empty() || text.size() >= size)
        return 0;
    *std::copy(text.begin(), text.end(), buffer) = '\0';
    return static_cast<uint32>(text.size());
}

} // namespace platform
