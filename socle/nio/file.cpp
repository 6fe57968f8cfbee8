#include "socle/nio/file.h"

#include "socle/nio/apple_double_internal.h"
#include "socle/nio/backup_filter_internal.h"
#include "socle/nio/directory.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "socle/nio/new_paths_internal.h"
#include "socle/nio/path.h"
#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/paths.h"

#include <algorithm>

namespace nio {

namespace {

using namespace platform;

struct opening {
    uint32 access, sharing, disposition, flags;
};

/// By mode, from `mode_read` on.
constexpr opening openings[] = {
    {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0},
    {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, 0},
    {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW, 0},
    {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS, 0},
    {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS},
    {GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS},
};

} // namespace

file::file() = default;

file::file(wide_string const & path, int mode) : item(path), handle_(open_handle(path, mode)) {}

file::file(nio::item const & from, int mode) : file(from.path(), mode) {}

file::~file() { close_ntfs(); }

/// No handle if the system refuses.
int file::try_open(wide_string const & path, int mode) {
    auto const & [access, sharing, disposition, flags] = openings[mode - mode_read];
    return CreateFileW(path, access, sharing, disposition, flags);
}

int file::open_handle(wide_string const & path, int mode) {
    if (mode == mode_closed)
        return INVALID_HANDLE_VALUE;
    if (mode < mode_read || mode > mode_restore)
        throw exception("unknown file open mode");
    int const handle = try_open(path, mode);
    if (handle == INVALID_HANDLE_VALUE && mode != mode_new && mode != mode_anew)
        throw filesystem_exception("cannot open file", path);
    return handle;
}

void file::open() {
    fork_offset_ = 0;
    handle_ = open_handle(path(), mode_read);
}

void file::open_rw() {
    fork_offset_ = 0;
    handle_ = open_handle(path(), mode_read_write);
}

void file::open_rsrc() { open_fork(mode_read); }

void file::open_rsrc_rw() { open_fork(mode_read_write); }

void file::open_fork(int mode) {
    held_paths const hold;
    auto const name = rsrc_name(path(), true, true);
    place_fork(name);
    handle_ = open_handle(name, mode);
    // What is written at the start of the sidecar would destroy its head.
    if (!seek(0) && fork_offset_ != 0) {
        uint32 const error = GetLastError();
        close();
        SetLastError(error);
        throw filesystem_exception("cannot open file", name);
    }
}

/// Takes the place of the fork in the physical file `name`.
void file::place_fork(wide_string const & name) {
    fork_offset_ = is_ntfs_rsrc_name(name) ? 0 : apple_double::resource_offset;
}

void file::open_stdin() { open_standard(STD_INPUT_HANDLE, "stdin"); }

void file::open_stdout() { open_standard(STD_OUTPUT_HANDLE, "stdout"); }

void file::open_stderr() { open_standard(STD_ERROR_HANDLE, "stderr"); }

void file::open_standard(uint32 which, char const * name) {
    narrow_string const text = name;
    path() = wide_string(text.begin(), text.end());
    fork_offset_ = 0;
    handle_ = GetStdHandle(which);
    if (handle_ == INVALID_HANDLE_VALUE)
        throw exception("cannot open " + text);
}

void file::close() {
    if (is_open())
        CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
}

bool file::create(bool overwrite) {
    held_paths const hold;
    create_parents(path());
    int const mode = overwrite ? mode_anew : mode_new;
    fork_offset_ = 0;
    handle_ = open_handle(path(), mode);
    return !is_open() && create_normalized([&] { handle_ = open_handle(path(), mode); });
}

bool file::create_rsrc(bool allow_ntfs, bool overwrite) {
    held_paths const hold;
    create_parents(path());
    auto const open_new = [&](int mode) {
        auto const name = rsrc_name(path(), false, allow_ntfs);
        place_fork(name);
        handle_ = open_handle(name, mode);
    };
    open_new(overwrite ? mode_anew : mode_new);
    bool const renamed = !is_open() && create_normalized([&] { open_new(mode_new); });
    if (is_open() && fork_offset_ != 0) {
        auto const head = apple_double::head({});
        write(head.data(), uint32(head.size()));
    }
    return renamed;
}

/// Tries again, by `open`, under the normalized path, if that is another one.
template <class Open>
bool file::create_normalized(Open open) {
    wide_string const kept = path();
    path() = normalize(kept);
    if (path() == kept)
        return false;
    open();
    if (!is_open()) {
        path() = kept;
        throw filesystem_exception("cannot create", kept);
    }
    return true;
}

void file::create_temp(wide_string const & directory) {
    path() = temp_path(directory);
    create(false);
}

bool file::console() const { return GetFileType(handle_) == FILE_TYPE_CHAR; }

uint32 file::read(char * buffer, uint32 size) {
    uint32 done = 0;
    if (size > 0 && !ReadFile(handle_, buffer, size, done))
        throw filesystem_exception("cannot read", path());
    return done;
}

void file::write(char const * buffer, uint32 size) {
    uint32 done = 0;
    if (size > 0 && !WriteFile(handle_, buffer, size, done))
        throw filesystem_exception("cannot write", path());
}

void file::flush() {}

uint64 file::tell() const {
    if (!is_open())
        return all_ones;
    uint64 position = 0;
    if (!SetFilePointer(handle_, 0, FILE_CURRENT, position))
        throw filesystem_exception("cannot get position", path());
    return position - fork_offset_;
}

bool file::seek(uint64 where) {
    uint64 position = 0;
    return is_open() && where <= uint64(INT64_MAX) - fork_offset_
           && SetFilePointer(handle_, static_cast<int64>(where + fork_offset_), FILE_BEGIN, position);
}

uint64 file::size() const {
    uint64 bytes = 0;
    if (!GetFileSize(handle_, bytes))
        throw filesystem_exception("cannot determine the size", path());
    return bytes - std::min(bytes, fork_offset_);
}

bool file::resize(uint64 size) {
    if (!is_open())
        return false;
    uint64 const place = tell();
    if (!seek(size))
        return false;
    bool const done = SetEndOfFile(handle_);
    seek(std::min(place, size));
    return done;
}

void file::unlink(bool must_succeed) {
    held_paths const hold;
    if (exists_ufs(path()))
        file(ufs_name(path()), mode_closed).unlink(must_succeed);
    if (!DeleteFileW(path()) && must_succeed)
        throw filesystem_exception("cannot delete", path());
}

void unlink(wide_string const & path, bool must_succeed) {
    held_paths const hold;
    if (is_directory(path))
        directory(path).unlink(must_succeed);
    else
        file(path, file::mode_closed).unlink(must_succeed);
}

} // namespace nio
