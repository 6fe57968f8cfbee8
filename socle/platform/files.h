#pragma once

#include "socle/basic/types.h"

namespace platform {

/// An open file: the host's descriptor.
constexpr int INVALID_HANDLE_VALUE = -1;

constexpr uint32 GENERIC_READ = 0x80000000;
constexpr uint32 GENERIC_WRITE = 0x40000000;

constexpr uint32 FILE_SHARE_READ = 1;
constexpr uint32 FILE_SHARE_WRITE = 2;

constexpr uint32 CREATE_NEW = 1;
constexpr uint32 CREATE_ALWAYS = 2;
constexpr uint32 OPEN_EXISTING = 3;

constexpr uint32 FILE_FLAG_BACKUP_SEMANTICS = 0x2000000;

/// Opens or makes a file, or a named stream as in `N:\f:note`, and with it its file if that is missing. Nothing waits
/// for a pipe's other end.
///
/// - With GENERIC_WRITE it excludes other writers, with GENERIC_READ without FILE_SHARE_WRITE all writers (32). Plain
///   readers are never refused.
/// - CREATE_ALWAYS empties a file only when everything else has worked. It makes none behind a dangling link.
/// - With FILE_FLAG_BACKUP_SEMANTICS folders open as well. If nothing is to be read then and writing is shared, the
///   handle is for the times only, and any file opens.
int CreateFileW(wide_string const & path, uint32 access, uint32 sharing, uint32 disposition, uint32 flags);

/// `which` of the process's standard streams, as a handle of its own that is closed like any other.
int GetStdHandle(uint32 which);
constexpr uint32 STD_INPUT_HANDLE = static_cast<uint32>(-10);
constexpr uint32 STD_OUTPUT_HANDLE = static_cast<uint32>(-11);
constexpr uint32 STD_ERROR_HANDLE = static_cast<uint32>(-12);

bool CloseHandle(int file);

/// Closes a handle, if it is one, at the end of a block.
class handle_guard {
public:
    explicit handle_guard(int file) : file_(file) {}
    handle_guard(handle_guard const &) = delete;
    handle_guard & operator=(handle_guard const &) = delete;
    ~handle_guard() {
        if (file_ != INVALID_HANDLE_VALUE)
            CloseHandle(file_);
    }

private:
    int file_;
};

/// Returns fewer bytes from a file only at its end. From a pipe it returns what is there, and fails with 109 when its
/// writers have gone.
bool ReadFile(int file, char * buffer, uint32 size, uint32 & done);
/// Writes all; `done` tells how much it was when that failed: 112 on a full disk, 232 on a pipe without readers.
bool WriteFile(int file, char const * buffer, uint32 size, uint32 & done);

constexpr uint32 FILE_BEGIN = 0;
constexpr uint32 FILE_CURRENT = 1;
/// `position` is where the file stands then; 131 below its start, 25 on what has no positions.
bool SetFilePointer(int file, int64 distance, uint32 method, uint64 & position);
/// Makes the position the end of the file; what lies between an old end and a later new one reads as zeros.
bool SetEndOfFile(int file);
bool FlushFileBuffers(int file);
/// 50 for what has no size: a pipe, a device.
bool GetFileSize(int file, uint64 & size);

constexpr uint32 FILE_TYPE_UNKNOWN = 0;
constexpr uint32 FILE_TYPE_DISK = 1;
constexpr uint32 FILE_TYPE_CHAR = 2;
constexpr uint32 FILE_TYPE_PIPE = 3;
uint32 GetFileType(int file);

/// Removes a file with its named streams, one named stream, or a link.
bool DeleteFileW(wide_string const & path);

/// Moves or renames a file, folder or link; 183 if the target exists, unless it is what is moved. Between volumes a
/// file is copied with all that belongs to it before it goes, and a folder is refused (17).
bool MoveFileW(wide_string const & from, wide_string const & to);

constexpr uint32 INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
constexpr uint32 FILE_ATTRIBUTE_READONLY = 0x1;
constexpr uint32 FILE_ATTRIBUTE_HIDDEN = 0x2;
constexpr uint32 FILE_ATTRIBUTE_SYSTEM = 0x4;
constexpr uint32 FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr uint32 FILE_ATTRIBUTE_ARCHIVE = 0x20;
/// What is neither file nor folder. Opening it may have effects, and reading it may wait.
constexpr uint32 FILE_ATTRIBUTE_DEVICE = 0x40;
constexpr uint32 FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr uint32 FILE_ATTRIBUTE_TEMPORARY = 0x100;
/// A link; the other bits are its target's, if there is one.
constexpr uint32 FILE_ATTRIBUTE_REPARSE_POINT = 0x400;

/// INVALID_FILE_ATTRIBUTES if there is nothing; opens nothing.
uint32 GetFileAttributesW(wide_string const & path);

/// Of these bits only what kind of thing it is: FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_DEVICE, and
/// FILE_ATTRIBUTE_REPARSE_POINT as well for a link; 0 for a plain file. Cheaper than all the bits.
uint32 GetFileKindW(wide_string const & path);

struct WIN32_FILE_ATTRIBUTE_DATA {
    uint32 dwFileAttributes;
    /// Of the link's target, like the bits; of the link itself if it dangles.
    uint64 ftCreationTime;
    uint64 ftLastWriteTime;
};

/// The bits, and the times that GetFileTime returns, in one question; opens nothing. False if there is nothing.
bool GetFileAttributesExW(wide_string const & path, WIN32_FILE_ATTRIBUTE_DATA & data);

/// Sets read-only, hidden, system, archive and temporary; the other bits are passed over.
bool SetFileAttributesW(wide_string const & path, uint32 attributes);

} // namespace platform
