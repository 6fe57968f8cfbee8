#pragma once

#include "socle/basic/codes.h"
#include "socle/basic/types.h"
#include "socle/platform/host.h"

namespace platform {

constexpr uint32 ERROR_FILE_NOT_FOUND = basic::codes::file_not_found;
constexpr uint32 ERROR_PATH_NOT_FOUND = basic::codes::path_not_found;
constexpr uint32 ERROR_TOO_MANY_OPEN_FILES = basic::codes::too_many_open_files;
constexpr uint32 ERROR_ACCESS_DENIED = basic::codes::access_denied;
constexpr uint32 ERROR_INVALID_HANDLE = basic::codes::invalid_handle;
constexpr uint32 ERROR_NOT_ENOUGH_MEMORY = basic::codes::not_enough_memory;
constexpr uint32 ERROR_INVALID_DATA = basic::codes::invalid_data;
constexpr uint32 ERROR_INVALID_DRIVE = basic::codes::no_such_drive;
constexpr uint32 ERROR_NOT_SAME_DEVICE = basic::codes::not_same_device;
constexpr uint32 ERROR_NO_MORE_FILES = basic::codes::no_more_files;
constexpr uint32 ERROR_WRITE_PROTECT = basic::codes::write_protected;
constexpr uint32 ERROR_NOT_READY = basic::codes::not_ready;
constexpr uint32 ERROR_SEEK = basic::codes::cannot_seek;
constexpr uint32 ERROR_SHARING_VIOLATION = basic::codes::sharing_violation;
constexpr uint32 ERROR_NOT_SUPPORTED = basic::codes::not_supported;
constexpr uint32 ERROR_BAD_NETPATH = basic::codes::no_such_share;
constexpr uint32 ERROR_BAD_NET_NAME = basic::codes::no_such_share_name;
constexpr uint32 ERROR_FILE_EXISTS = basic::codes::file_exists;
constexpr uint32 ERROR_INVALID_PARAMETER = basic::codes::invalid_parameter;
constexpr uint32 ERROR_BROKEN_PIPE = basic::codes::broken_pipe;
constexpr uint32 ERROR_DISK_FULL = basic::codes::disk_full;
constexpr uint32 ERROR_INSUFFICIENT_BUFFER = basic::codes::insufficient_buffer;
constexpr uint32 ERROR_INVALID_NAME = basic::codes::invalid_name;
constexpr uint32 ERROR_NEGATIVE_SEEK = basic::codes::negative_seek;
constexpr uint32 ERROR_DIR_NOT_EMPTY = basic::codes::directory_not_empty;
constexpr uint32 ERROR_BAD_PATHNAME = basic::codes::bad_path;
constexpr uint32 ERROR_ALREADY_EXISTS = basic::codes::already_exists;
constexpr uint32 ERROR_FILENAME_EXCED_RANGE = basic::codes::name_too_long;
constexpr uint32 ERROR_NO_DATA = basic::codes::pipe_closed;
constexpr uint32 ERROR_DIRECTORY = basic::codes::not_a_directory;
constexpr uint32 ERROR_IO_DEVICE = basic::codes::device_failed;
constexpr uint32 ERROR_FILE_CORRUPT = basic::codes::file_corrupt;

/// The code of the last call that failed on this thread. Calls that succeed leave it alone.
uint32 GetLastError();
void SetLastError(uint32 code);

/// The system's text for a code, ending ".\r\n" and a zero byte, which is not counted in the result. 0 if there is no
/// text for the code, or the buffer is too small.
uint32 FormatMessageA(uint32 code, char * buffer, uint32 size);

} // namespace platform
