#pragma once

#include "basic/types.h"

namespace platform {

constexpr uint32 ERROR_FILE_NOT_FOUND = 2;
constexpr uint32 ERROR_PATH_NOT_FOUND = 3;
constexpr uint32 ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr uint32 ERROR_ACCESS_DENIED = 5;
constexpr uint32 ERROR_INVALID_HANDLE = 6;
constexpr uint32 ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr uint32 ERROR_INVALID_DATA = 13;
constexpr uint32 ERROR_NOT_SAME_DEVICE = 17;
constexpr uint32 ERROR_WRITE_PROTECT = 19;
constexpr uint32 ERROR_NOT_SUPPORTED = 50;
constexpr uint32 ERROR_INVALID_PARAMETER = 87;
constexpr uint32 ERROR_DISK_FULL = 112;
constexpr uint32 ERROR_INSUFFICIENT_BUFFER = 122;
constexpr uint32 ERROR_INVALID_NAME = 123;
constexpr uint32 ERROR_DIR_NOT_EMPTY = 145;
constexpr uint32 ERROR_ALREADY_EXISTS = 183;
constexpr uint32 ERROR_FILENAME_EXCED_RANGE = 206;
constexpr uint32 ERROR_NO_DATA = 232;
constexpr uint32 ERROR_IO_DEVICE = 1117;

/// The code of the last call that failed on this thread. Calls that succeed leave it alone.
uint32 GetLastError();
void SetLastError(uint32 code);

} // namespace platform
