#include "platform/errors.h"

namespace platform {

namespace {
thread_local uint32 last_error = 0;
} // namespace

uint32 GetLastError() { return last_error; }

void SetLastError(uint32 code) { last_error = code; }

} // namespace platform
