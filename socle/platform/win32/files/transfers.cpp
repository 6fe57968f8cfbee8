#include "socle/platform/win32/host/system.h"

namespace platform {

namespace {

/// Whether the file has positions and a size; the system gives some to pipes as well. `code` says why not.
bool has_positions(HANDLE file, uint32 code) {
    DWORD const type = ::GetFileType(file);
    return type == FILE_TYPE_UNKNOWN ? win32::report(false) : type == FILE_TYPE_DISK || win32::report_code(code);
}

} // namespace

bool ReadFile(int file, char * buffer, uint32 size, uint32 & done) {
    DWORD got = 0;
    bool const read = win32::report(::ReadFile(win32::handle_of(file), buffer, size, &got, nullptr));
    done = got;
    return read;
}

bool WriteFile(int file, char const * buffer, uint32 size, uint32 & done) {
    DWORD written = 0;
    bool const all = win32::report(::WriteFile(win32::handle_of(file), buffer, size, &written, nullptr));
    done = written;
    return all;
}

bool SetFilePointer(int file, int64 distance, uint32 method, uint64 & position) {
    HANDLE const handle = win32::handle_of(file);
    LARGE_INTEGER moved, reached;
    moved.QuadPart = distance;
    if (!has_positions(handle, ERROR_SEEK) || !win32::report(::SetFilePointerEx(handle, moved, &reached, method)))
        return false;
    position = static_cast<uint64>(reached.QuadPart);
    return true;
}

bool SetEndOfFile(int file) { return win32::report(::SetEndOfFile(win32::handle_of(file))); }

bool FlushFileBuffers(int file) {
    HANDLE const handle = win32::handle_of(file);
    // A pipe would wait until its reader has read everything, and a console holds nothing back.
    DWORD const type = ::GetFileType(handle);
    return type == FILE_TYPE_PIPE || type == FILE_TYPE_CHAR || win32::report(::FlushFileBuffers(handle));
}

bool GetFileSize(int file, uint64 & size) {
    HANDLE const handle = win32::handle_of(file);
    LARGE_INTEGER length;
    if (!has_positions(handle, ERROR_NOT_SUPPORTED) || !win32::report(::GetFileSizeEx(handle, &length)))
        return false;
    size = static_cast<uint64>(length.QuadPart);
    return true;
}

uint32 GetFileType(int file) {
    DWORD const type = ::GetFileType(win32::handle_of(file));
    if (type == FILE_TYPE_UNKNOWN)
        win32::report_code(::GetLastError());
    return type;
}

} // namespace platform
