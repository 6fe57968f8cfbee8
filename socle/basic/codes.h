#pragma once

/// The codes of Win32 that the library itself gives, on every system: as `error()` of an `io::exception` and of a
/// `nio::filesystem_exception`, and from `platform/host.h`.
namespace basic::codes {

constexpr int file_not_found = 2;        ///< there is no such leaf in its folder
constexpr int path_not_found = 3;        ///< the folder is missing or is none, or there is no such drive
constexpr int too_many_open_files = 4;   ///< no handle is left
constexpr int access_denied = 5;         ///< not permitted, read-only, or a folder in the place of a file
constexpr int invalid_handle = 6;        ///< what is used is not open
constexpr int not_enough_memory = 8;     ///< no memory is left
constexpr int invalid_data = 13;         ///< what is stored there makes no sense
constexpr int no_such_drive = 15;        ///< there is no such drive
constexpr int not_same_device = 17;      ///< a folder cannot move to another volume
constexpr int no_more_files = 18;        ///< a walk has come to its end
constexpr int write_protected = 19;      ///< the medium is read-only
constexpr int not_ready = 21;            ///< the drive holds no medium
constexpr int cannot_seek = 25;          ///< a pipe or a device has no positions
constexpr int sharing_violation = 32;    ///< somebody else has it open, or a folder is moved into itself
constexpr int not_supported = 50;        ///< the file system cannot do this
constexpr int no_such_share = 53;        ///< there is no such share
constexpr int no_such_share_name = 67;   ///< the server has no such share
constexpr int file_exists = 80;          ///< a file to be created is there
constexpr int invalid_parameter = 87;    ///< an argument makes no sense, such as an unknown code page
constexpr int broken_pipe = 109;         ///< the writer of a pipe has gone; never thrown
constexpr int disk_full = 112;           ///< no room is left
constexpr int insufficient_buffer = 122; ///< a result does not fit its buffer
constexpr int invalid_name = 123;        ///< a name that cannot be
constexpr int negative_seek = 131;       ///< a position below 0
constexpr int directory_not_empty = 145; ///< a folder to be removed has entries
constexpr int bad_path = 161;            ///< a path that cannot be
constexpr int already_exists = 183;      ///< a folder to be created, or the target of a move, is there
constexpr int name_too_long = 206;       ///< a name or a path is too long
constexpr int pipe_closed = 232;         ///< the reader of a pipe has gone
constexpr int not_a_directory = 267;     ///< a file in the place of a folder
constexpr int device_failed = 1117;      ///< the device failed
constexpr int file_corrupt = 1392;       ///< a part of the file, such as its named streams, cannot be found

} // namespace basic::codes
