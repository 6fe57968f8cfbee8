#pragma once

#include "socle/basic/types.h"
#include "socle/platform/host.h"

namespace platform {

constexpr uint32 ERROR_FILE_NOT_FOUND = 2;
constexpr uint32 ERROR_PATH_NOT_FOUND = 3;
constexpr uint32 ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr uint32 ERROR_ACCESS_DENIED = 5;
constexpr uint32 ERROR_INVALID_HANDLE = 6;
constexpr uint32 ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr uint32 ERROR_INVALID_DATA = 13;
constexpr uint32 ERROR_INVALID_DRIVE = 15;
constexpr uint32 ERROR_NOT_SAME_DEVICE = 17;
constexpr uint32 ERROR_NO_MORE_FILES = 18;
constexpr uint32 ERROR_WRITE_PROTECT = 19;
constexpr uint32 ERROR_NOT_READY = 21;
constexpr uint32 ERROR_SEEK = 25;
constexpr uint32 ERROR_SHARING_VIOLATION = 32;
constexpr uint32 ERROR_NOT_SUPPORTED = 50;
constexpr uint32 ERROR_BAD_NETPATH = 53;
constexpr uint32 ERROR_BAD_NET_NAME = 67;
constexpr uint32 ERROR_FILE_EXISTS = 80;
constexpr uint32 ERROR_INVALID_PARAMETER = 87;
constexpr uint32 ERROR_BROKEN_PIPE = 109;
constexpr uint32 ERROR_DISK_FULL = 112;
constexpr uint32 ERROR_INSUFFICIENT_BUFFER = 122;
constexpr uint32 ERROR_INVALID_NAME = 123;
constexpr uint32 ERROR_NEGATIVE_SEEK = 131;
constexpr uint32 ERROR_DIR_NOT_EMPTY = 145;
constexpr uint32 ERROR_BAD_PATHNAME = 161;
constexpr uint32 ERROR_ALREADY_EXISTS = 183;
constexpr uint32 ERROR_FILENAME_EXCED_RANGE = 206;
constexpr uint32 ERROR_NO_DATA = 232;
constexpr uint32 ERROR_DIRECTORY = 267;
constexpr uint32 ERROR_IO_DEVICE = 1117;

/// The code of the last call that failed on this thread. Calls that succeed leave it alone.
uint32 GetLastError();
void SetLastError(uint32 code);

/// The system's text for a code, ending ".\r\n" and a zero byte, which is not counted in the result. 0 if there is no
/// text for the code, or the buffer is too small.
uint32 FormatMessageA(uint32 code, char * buffer, uint32 size);

} // namespace platform
