#include "socle/platform/error_messages.h"

#include "socle/platform/errors.h"

#include <algorithm>
#include <iterator>

namespace platform {

namespace {

struct message {
    uint32 code;
    std::string_view text;
};

constexpr message messages[] = {
    {0, "No error.\r\n"},
    {ERROR_FILE_NOT_FOUND, "There is no such file.\r\n"},
    {ERROR_PATH_NOT_FOUND, "There is no such folder on the way to the file.\r\n"},
    {ERROR_TOO_MANY_OPEN_FILES, "Too many files are open.\r\n"},
    {ERROR_ACCESS_DENIED, "Access is denied.\r\n"},
    {ERROR_INVALID_HANDLE, "The handle is not that of an open file.\r\n"},
    {ERROR_NOT_ENOUGH_MEMORY, "There is not enough memory.\r\n"},
    {ERROR_INVALID_DATA, "The data are not valid.\r\n"},
    {ERROR_NOT_SAME_DEVICE, "It cannot be moved to another volume.\r\n"},
    {ERROR_NO_MORE_FILES, "There are no more files.\r\n"},
    {ERROR_WRITE_PROTECT, "The medium is read-only.\r\n"},
    {ERROR_SEEK, "The position cannot be reached.\r\n"},
    {ERROR_SHARING_VIOLATION, "It is in use elsewhere.\r\n"},
    {ERROR_NOT_SUPPORTED, "The file system or the system does not support this.\r\n"},
    {ERROR_BAD_NETPATH, "The network path was not found.\r\n"},
    {ERROR_FILE_EXISTS, "The file exists.\r\n"},
    {ERROR_INVALID_PARAMETER, "A parameter is not valid.\r\n"},
    {ERROR_BROKEN_PIPE, "The pipe has ended.\r\n"},
    {ERROR_DISK_FULL, "The disk is full.\r\n"},
    {ERROR_INSUFFICIENT_BUFFER, "The buffer is too small.\r\n"},
    {ERROR_INVALID_NAME, "The name is not valid.\r\n"},
    {ERROR_NEGATIVE_SEEK, "The position would lie before the start of the file.\r\n"},
    {ERROR_DIR_NOT_EMPTY, "The folder is not empty.\r\n"},
    {ERROR_ALREADY_EXISTS, "A file or folder of that name exists.\r\n"},
    {ERROR_FILENAME_EXCED_RANGE, "The name is too long.\r\n"},
    {ERROR_NO_DATA, "The pipe is being closed.\r\n"},
    {ERROR_DIRECTORY, "This is not a folder.\r\n"},
    {ERROR_IO_DEVICE, "The device failed.\r\n"},
    {ERROR_FILE_CORRUPT, "A part of the file cannot be found.\r\n"},
};

} // namespace

std::string_view error_message(uint32 code) {
    auto const * const found =
        std::find_if(std::begin(messages), std::end(messages), [&](message const & m) { return m.code == code; });
    return found == std::end(messages) ? std::string_view() : found->text;
}

} // namespace platform
