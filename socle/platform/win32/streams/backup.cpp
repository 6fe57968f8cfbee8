#include "socle/platform/win32/host/system.h"

namespace platform {

namespace {

/// Calls the system with the context as it knows it.
template <typename Call>
bool run(backup_context *& context, Call call) {
    void * own = context;
    bool const done = win32::report(call(&own));
    context = static_cast<backup_context *>(own);
    return done;
}

void enable(HANDLE token, wchar_t const * privilege) {
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    if (::LookupPrivilegeValueW(nullptr, privilege, &wanted.Privileges[0].Luid))
        ::AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr);
}

} // namespace

bool BackupRead(int file, char * buffer, uint32 size, uint32 & done, bool abort, backup_context *& context) {
    DWORD got = 0;
    bool const read = run(context, [&](void ** own) {
        auto * const bytes = reinterpret_cast<BYTE *>(buffer);
        return ::BackupRead(win32::handle_of(file), bytes, size, &got, abort, FALSE, own);
    });
    done = got;
    return read;
}

bool BackupSeek(int file, uint64 size, uint64 & done, backup_context *& context) {
    DWORD low = 0, high = 0;
    bool const all = run(context, [&](void ** own) {
        return ::BackupSeek(win32::handle_of(file), static_cast<DWORD>(size), static_cast<DWORD>(size >> 32), &low,
                            &high, own);
    });
    done = uint64{high} << 32 | low;
    return all;
}

bool BackupWrite(int file, char const * buffer, uint32 size, uint32 & done, backup_context *& context) {
    DWORD written = 0;
    bool const all = run(context, [&](void ** own) {
        auto * const bytes = reinterpret_cast<BYTE *>(const_cast<char *>(buffer)); // which it only reads
        return ::BackupWrite(win32::handle_of(file), bytes, size, &written, FALSE, FALSE, own);
    });
    done = written;
    return all;
}

void EnableBackupPrivileges() {
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token))
        return;
    win32::handle_closer const closer(token);
    enable(token, L"SeBackupPrivilege");
    enable(token, L"SeRestorePrivilege");
}

} // namespace platform
