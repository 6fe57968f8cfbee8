#pragma once

#include "socle/basic/types.h"

/// A file's streams as one sequence of bytes: records of a 20-byte head, a name and data. All numbers are
/// little-endian.
///
///     0   4  which stream: BACKUP_DATA the file itself, BACKUP_ALTERNATE_DATA a named stream
///     4   4  attributes, 0
///     8   8  the size of the data
///     16  4  the size of the name in bytes
///     20     the name, as in `:note:$DATA`, in 16-bit units without a zero at the end; empty for the file itself
namespace platform {

constexpr uint32 BACKUP_DATA = 1;
constexpr uint32 BACKUP_ALTERNATE_DATA = 4;

/// Where a backup stands. A null pointer starts one; it is released by a `BackupRead` with `abort`, in both directions.
struct backup_context;

/// Reads the next `size` bytes of the sequence of `file`; fewer, down to none, only at its end. False if that fails, or
/// if a stream has become shorter than its head said.
bool BackupRead(int file, char * buffer, uint32 size, uint32 & done, bool abort, backup_context *& context);

/// Skips at most `size` bytes of the data of the record that is being read; false if there are fewer, all of which are
/// skipped then.
bool BackupSeek(int file, uint64 size, uint64 & done, backup_context *& context);

/// Gives `file` the streams in the sequence, whose next bytes these are. What a stream held before is lost. Records of
/// other things that a file may have are passed over; false with ERROR_INVALID_DATA for what is no record.
bool BackupWrite(int file, char const * buffer, uint32 size, uint32 & done, backup_context *& context);

/// Lets the process read and write files for a backup that it could not open otherwise, if the system knows of such a
/// thing and lets the process have it.
void EnableBackupPrivileges();

} // namespace platform
