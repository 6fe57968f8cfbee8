#include "socle/nio/attributes.h"

#include "socle/nio/apple_double_internal.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "socle/nio/found_at_load_internal.h"
#include "socle/nio/new_paths_internal.h"
#include "socle/nio/path.h"
#include "socle/platform/errors.h"
#include "socle/platform/file_times.h"
#include "socle/platform/folders.h"
#include "socle/platform/paths.h"

#include <algorithm>
#include <string_view>

namespace nio {

namespace {

using namespace platform;

constexpr uint32 kept_attributes = 0x1B7;

/// The block in which a stream keeps the Finder information: these bytes, 8 zeros, the information, 12 zeros.
constexpr std::string_view block_signature("AFP\0\0\0\1\0", 8);
constexpr std::size_t block_info_offset = 16;
constexpr uint32 block_size = 60;

using apple_double::finder_info_size;

char const * chars(apple_double::finder_info const & info) { return reinterpret_cast<char const *>(info.data()); }

/// Whether nothing is there, by the kind that was asked for just now.
bool is_missing(uint32 kind) { return kind == INVALID_FILE_ATTRIBUTES && nothing_is_there(); }

/// Throws for what may be at `name`, but out of reach, and for a pipe or a device: reading it might not come to an end.
void require_file(wide_string const & name, uint32 kind) {
    if (kind != INVALID_FILE_ATTRIBUTES) {
        if ((kind & FILE_ATTRIBUTE_DEVICE) == 0)
            return;
        SetLastError(ERROR_ACCESS_DENIED);
    }
    throw filesystem_exception("cannot open file", name);
}

/// False if there is no information.
bool read_info(file & from, char (&info)[finder_info_size]) {
    if (is_ntfs_info_name(from.path())) {
        char block[block_size];
        if (from.read(block, block_size) != block_size
            || !std::string_view(block, block_size).starts_with(block_signature))
            return false;
        std::copy_n(block + block_info_offset, finder_info_size, info);
        return true;
    }
    uint32 offset;
    return apple_double::find_entry(from, apple_double::finder_info_id, offset) && from.seek(offset)
           && from.read(info, finder_info_size) == finder_info_size;
}

void write_block(file & stream, apple_double::finder_info const & info) {
    char block[block_size] = {};
    block_signature.copy(block, block_signature.size());
    std::copy_n(chars(info), info.size(), block + block_info_offset);
    stream.write(block, block_size);
}

void write_sidecar(file & sidecar, apple_double::finder_info const & info) {
    if (!sidecar.is_open() || sidecar.size() == 0) {
        auto const head = apple_double::head(info);
        sidecar.write(head.data(), uint32(head.size()));
        return;
    }
    // Another program's sidecar may have its data anywhere, and a damaged one in the place of something else.
    uint32 offset;
    if (!apple_double::find_room(sidecar, apple_double::finder_info_id, finder_info_size, offset)
        || !sidecar.seek(offset)) {
        SetLastError(ERROR_INVALID_DATA);
        throw filesystem_exception("cannot write", sidecar.path());
    }
    sidecar.write(chars(info), finder_info_size);
}

/// Opens `path` for its times only.
int open_times(wide_string const & path) {
    return CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING,
                       FILE_FLAG_BACKUP_SEMANTICS);
}

void apply_times(wide_string const & path, uint64 created, uint64 modified) {
    int const handle = open_times(path);
    handle_guard const at_end(handle);
    if (handle != INVALID_HANDLE_VALUE)
        SetFileTime(handle, created ? &created : nullptr, modified ? &modified : nullptr);
}

void take(WIN32_FILE_ATTRIBUTE_DATA const & data, attributes & into) {
    into.created.set(data.ftCreationTime, time::format_file_time);
    into.modified.set(data.ftLastWriteTime, time::format_file_time);
    into.file_attributes = data.dwFileAttributes & kept_attributes;
    into.read_only = (into.file_attributes & FILE_ATTRIBUTE_READONLY) != 0;
    into.mode = into.read_only ? 0440 : 0640;
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        into.mode |= 0110;
}

/// As `is_ntfs`.
bool has_streams(open_folder const & folder, wide_string const & name) {
    wide_string file_system;
    return platform_is_nt && GetVolumeInformationW(folder, name, file_system) && file_system == u"NTFS";
}

} // namespace

attributes::attributes(item & from) : mode(0) { load(from); }

void attributes::load(item & from) {
    held_paths const hold;
    wide_string const & path = from.path();
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(path, data))
        throw filesystem_exception("cannot access timestamps", path);
    take(data, *this);
    wide_string const name = info_name(path, true, true);
    uint32 const kind = GetFileKindW(name);
    if (is_missing(kind))
        return;
    require_file(name, kind);
    file info(name, file::mode_read);
    take_info(info);
}

/// The same for an entry of an open directory; `path` is the one that failures tell.
void attributes::load_entry(open_folder const & folder, wide_string const & name, wide_string const & path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(folder, name, data))
        throw filesystem_exception("cannot access timestamps", path);
    take(data, *this);
    // By the rule of `info_name`: a stream that may be there, but out of reach, counts.
    bool const in_stream =
        has_streams(folder, name)
        && (GetFileKindW(folder, ntfs_rsrc_name(name)) != INVALID_FILE_ATTRIBUTES || !nothing_is_there());
    wide_string const info_leaf = in_stream ? ntfs_info_name(name) : ufs_name(name);
    uint32 const kind = GetFileKindW(folder, info_leaf);
    if (is_missing(kind))
        return;
    file info(in_stream ? ntfs_info_name(path) : ufs_name(path), file::mode_closed);
    require_file(info.path(), kind);
    info.handle_ = CreateFileW(folder, info_leaf, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
    if (!info.is_open())
        throw filesystem_exception("cannot open file", info.path());
    take_info(info);
}

/// What stands in an open stream or sidecar.
void attributes::take_info(file & info) {
    char found[finder_info_size];
    if (read_info(info, found))
        std::copy_n(found, finder_info_size, finder_info.begin());
}

/// Opens the file that `info` names, or makes it; where it cannot be made, tries the one of the normalized `path`.
void attributes::open_info(file & info, wide_string const & path, bool allow_ntfs) {
    info.handle_ = file::try_open(info.path(), file::mode_read_write);
    if (info.is_open())
        return;
    create_parents(info.path());
    info.handle_ = file::try_open(info.path(), file::mode_new);
    if (info.is_open())
        return;
    uint32 const error = GetLastError();
    wide_string const safe = normalize(path);
    if (safe != path) {
        info.path() = info_name(safe, false, allow_ntfs);
        info.handle_ = file::try_open(info.path(), file::mode_new);
        if (info.is_open())
            return;
        throw filesystem_exception("cannot create", path);
    }
    SetLastError(error);
    throw filesystem_exception("cannot write", info.path());
}

void attributes::write_info(file & info, wide_string const & path, bool allow_ntfs) const {
    open_info(info, path, allow_ntfs);
    if (is_ntfs_info_name(info.path()))
        write_block(info, finder_info);
    else
        write_sidecar(info, finder_info);
}

void attributes::apply(item & to, bool write_info, bool allow_ntfs) const {
    held_paths const hold;
    wide_string const & path = to.path();
    uint32 const others = file_attributes & ~FILE_ATTRIBUTE_READONLY;
    auto const apply_all = [&](bool closes) {
        apply_times(path, created.file_time(), modified.file_time());
        SetFileAttributesW(path, closes ? others | FILE_ATTRIBUTE_READONLY : others);
    };
    file info;
    if (write_info)
        info.path() = info_name(path, false, allow_ntfs);
    // A stream cannot be written when its file cannot, and writing it may give the file another time.
    bool const in_stream = write_info && is_ntfs_info_name(info.path());
    apply_all(read_only && !in_stream);
    if (!write_info || is_directory(info.path()))
        return;
    try {
        this->write_info(info, path, allow_ntfs);
    } catch (...) {
        if (in_stream)
            apply_all(read_only);
        throw;
    }
    info.close();
    if (in_stream)
        apply_all(read_only);
}

} // namespace nio
