#include "socle/nio/attributes.h"

#include "socle/nio/apple_double_internal.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "socle/nio/make_internal.h"
#include "socle/nio/path.h"
#include "socle/platform/errors.h"
#include "socle/platform/file_times.h"
#include "socle/platform/files.h"

#include <algorithm>

namespace nio {

namespace {

using namespace platform;

constexpr uint32 kept_attributes = 0x1B7;

/// The block in which a stream keeps the Finder information: these bytes, 8 zeros, the information, 12 zeros.
constexpr std::array<unsigned char, 8> block_signature = {'A', 'F', 'P', 0, 0, 0, 1, 0};
constexpr std::size_t block_info_offset = 16;
using info_block = std::array<unsigned char, 60>;

template <class Bytes>
char * chars(Bytes & bytes) {
    return reinterpret_cast<char *>(bytes.data());
}

template <class Bytes>
char const * chars(Bytes const & bytes) {
    return reinterpret_cast<char const *>(bytes.data());
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

} // namespace

attributes::attributes(item & from) : mode(0) { load(from); }

void attributes::load(item & from) {
    wide_string const & path = from.path();
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(path, data))
        throw filesystem_exception("cannot access timestamps", path);
    created.set(data.ftCreationTime, time::format_file_time);
    modified.set(data.ftLastWriteTime, time::format_file_time);
    file_attributes = data.dwFileAttributes & kept_attributes;
    read_only = (file_attributes & FILE_ATTRIBUTE_READONLY) != 0;
    mode = read_only ? 0440 : 0640;
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        mode |= 0110;

    // What is no file cannot hold the information, and reading it might not come to an end.
    wide_string const name = info_name(path, true, true);
    uint32 const kind = GetFileAttributesW(name);
    if (kind == INVALID_FILE_ATTRIBUTES && !nothing_is_there())
        throw filesystem_exception("cannot open file", name);
    if (kind == INVALID_FILE_ATTRIBUTES || (kind & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0)
        return;
    file info(name, 1);
    if (is_ntfs_info_name(name)) {
        info_block block;
        if (info.read(chars(block), uint32(block.size())) == block.size()
            && std::equal(block_signature.begin(), block_signature.end(), block.begin()))
            std::copy_n(block.begin() + block_info_offset, finder_info.size(), finder_info.begin());
        return;
    }
    uint32 offset;
    if (apple_double::find_entry(info, apple_double::finder_info_id, offset) && info.seek(offset)) {
        auto found = finder_info;
        if (info.read(chars(found), uint32(found.size())) == found.size())
            finder_info = found;
    }
}

void attributes::apply(item & to, bool write_info, bool allow_ntfs) const {
    wide_string const & path = to.path();
    apply_times(path, created.file_time(), modified.file_time());
    uint32 const others = file_attributes & ~FILE_ATTRIBUTE_READONLY;
    SetFileAttributesW(path, read_only ? others | FILE_ATTRIBUTE_READONLY : others);
    if (!write_info)
        return;

    wide_string name = info_name(path, false, allow_ntfs);
    if (is_directory(name))
        return;
    file info(name, 0);
    try {
        info.open_rw();
    } catch (exception const &) {
        create_parents(name);
        info.handle_ = file::open_handle(name, 3);
        if (!info.is_open()) {
            wide_string const safe = normalize(path);
            name = info_name(safe, false, allow_ntfs);
            if (safe != path && (info.handle_ = file::open_handle(name, 3)) == INVALID_HANDLE_VALUE)
                throw filesystem_exception("cannot create", path);
        }
    }
    if (is_ntfs_info_name(name)) {
        info_block block{};
        std::copy(block_signature.begin(), block_signature.end(), block.begin());
        std::copy(finder_info.begin(), finder_info.end(), block.begin() + block_info_offset);
        info.write(chars(block), uint32(block.size()));
        return;
    }
    if (uint32 offset; info.is_open() && info.size() > 0) {
        // Another program's sidecar may have its data anywhere, and a damaged one in the place of something else.
        if (!apple_double::find_room(info, apple_double::finder_info_id, uint32(finder_info.size()), offset)
            || !info.seek(offset)) {
            SetLastError(ERROR_INVALID_DATA);
            throw filesystem_exception("cannot write", name);
        }
    } else {
        auto const head = apple_double::head();
        info.write(chars(head), uint32(head.size()));
    }
    info.write(chars(finder_info), uint32(finder_info.size()));
}

} // namespace nio
