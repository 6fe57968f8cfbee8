#include "socle/basic/internal/byte_order.h"
#include "socle/platform/files.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/report.h"

#include <charconv>

/// The attribute bits of files. On a mounted NTFS disk they are the disk's own. Elsewhere read-only is the owner's
/// missing write bit, and a user extended attribute keeps what the host knows nothing of.
namespace platform {

namespace posix {

namespace {

/// The kept bits in hexadecimal digits.
constexpr char const * record_attribute = "user.socle.attributes";
constexpr uint32 kept_bits =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_TEMPORARY;

bool disk_bits(host::at const & file, uint32 & bits) {
    narrow_string value;
    if (get_attribute(file, ntfs_bits_attribute, value) || value.size() != sizeof bits)
        return false;
    bits = basic::load<uint32>(value.data(), false);
    return true;
}

host_error set_disk_bits(host::at const & file, uint32 bits) {
    narrow_string value(sizeof bits, '\0');
    basic::store(value.data(), bits, false);
    return set_attribute(file, ntfs_bits_attribute, value);
}

/// A mode as it was before the write bit was lifted, if it is.
mode_t settled(mode_t mode) { return is_lifted(mode) ? mode & 07777 & ~(S_IWUSR | lifted_mark(mode)) : mode & 07777; }

uint32 default_record(mode_t mode) { return S_ISDIR(mode) ? 0 : FILE_ATTRIBUTE_ARCHIVE; }

/// Leaves `bits` alone if there is none, or it is not ours.
host_error get_record(host::at const & file, uint32 & bits) {
    narrow_string text;
    if (host_error const error = get_record_text(file, record_attribute, text))
        return error;
    read_number(text, 16, bits);
    bits &= kept_bits;
    return {};
}

/// Hosts that keep none drop it.
host_error set_record(host::at const & file, uint32 bits, mode_t mode) {
    uint32 now = default_record(mode);
    if (host_error const error = get_record(file, now); error || now == bits)
        return error;
    char digits[8];
    host_error const error = set_attribute(
        file, record_attribute, narrow_string(digits, std::to_chars(digits, digits + sizeof digits, bits, 16).ptr));
    return error == ENOTSUP ? host_error() : error;
}

/// `recorded` tells whether the file may have a record.
system_code get_bits(volume const & on, host::at const & file, mode_t mode, bool recorded, uint32 & bits) {
    bits = 0;
    if (S_ISDIR(mode) || S_ISREG(mode)) {
        if (!on.ntfs_disk || !disk_bits(file, bits)) {
            bits = default_record(mode);
            if (host_error const error = recorded ? get_record(file, bits) : host_error())
                return code_of(error);
        }
        bits &= kept_bits;
        bits |= is_read_only(on, file, mode) ? FILE_ATTRIBUTE_READONLY : 0;
        if (!on.ntfs_disk && is_lifted(mode))
            static_cast<void>(!host::chmod(file, settled(mode))); // what a process that ended has left
    }
    uint32 const kind = kind_of(mode);
    bits = (bits | kind) == 0 ? FILE_ATTRIBUTE_NORMAL : bits | kind;
    return {};
}

system_code set_bits(volume const & on, host::at const & file, struct stat const & status, uint32 bits) {
    mode_t mode = status.st_mode;
    uint32 now = 0;
    bool const disk = on.ntfs_disk && disk_bits(file, now);
    bool const taken_for_special = disk && (now & FILE_ATTRIBUTE_SYSTEM) != 0 && (S_ISFIFO(mode) || S_ISSOCK(mode));
    if (!S_ISDIR(mode) && !S_ISREG(mode) && !taken_for_special)
        return ERROR_NOT_SUPPORTED;
    if (disk) {
        constexpr uint32 settable = kept_bits | FILE_ATTRIBUTE_READONLY;
        // With that bit, the driver takes a file without bytes for a pipe and one with a single byte for a socket.
        if (!S_ISDIR(mode) && status.st_size <= 1)
            bits &= ~FILE_ATTRIBUTE_SYSTEM;
        now = (now & ~(settable | FILE_ATTRIBUTE_NORMAL)) | (bits & settable);
        return code_of(set_disk_bits(file, now != 0 ? now : FILE_ATTRIBUTE_NORMAL));
    }
    if (host_error const error = set_record(file, bits & kept_bits, mode))
        return code_of(error);
    bool const read_only = (bits & FILE_ATTRIBUTE_READONLY) != 0;
    if (read_only == is_read_only(on, file, mode) && !is_lifted(mode))
        return {};
    constexpr mode_t all_write = S_IWUSR | S_IWGRP | S_IWOTH;
    mode = settled(mode);
    mode = read_only ? mode & ~all_write : mode | S_IWUSR;
    return last_code_if(host::chmod(file, mode & 07777) != 0);
}

/// What the host tells of a file, and of the target if it is a link.
struct file_status {
    struct statx about {};
    bool link = false;
    bool lost = false; // a link without a target, which answers for itself

    mode_t mode() const { return about.stx_mode; }
};

system_code look_at(resolved_path const & at, unsigned what, file_status & status) {
    what |= STATX_TYPE;
    if (host::statx(at.at(), AT_SYMLINK_NOFOLLOW, what, &status.about) != 0)
        return last_code_at(at);
    status.link = S_ISLNK(status.mode());
    status.lost = status.link && host::statx(at.at(), 0, what, &status.about) != 0;
    if (at.is_folder && !S_ISDIR(status.mode()))
        return status.lost ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
    return {};
}

/// Where the host has the named stream that the path leads to, and what it tells of it.
system_code find_stream(resolved_path const & at, stream_place & stream, struct statx & about) {
    if (system_code const code = at.on->streams->locate(at.at(), at.stream, named_streams::purpose::look, stream))
        return code;
    unsigned const what = STATX_TYPE | STATX_MTIME | STATX_BTIME;
    if (host::statx(stream.at(), AT_SYMLINK_NOFOLLOW, what, &about) != 0)
        return last_code();
    return S_ISREG(about.stx_mode) ? system_code() : ERROR_ACCESS_DENIED;
}

} // namespace

uint32 kind_of(mode_t mode) {
    if (S_ISDIR(mode))
        return FILE_ATTRIBUTE_DIRECTORY;
    return S_ISREG(mode) || S_ISLNK(mode) ? 0 : FILE_ATTRIBUTE_DEVICE;
}

bool is_read_only(volume const & on, host::at const & file, mode_t mode) {
    uint32 bits = 0;
    if (on.ntfs_disk && disk_bits(file, bits))
        return (bits & FILE_ATTRIBUTE_READONLY) != 0;
    return (settled(mode) & S_IWUSR) == 0;
}

system_code kind_at(resolved_path const & at, uint32 & kind) {
    file_status status;
    if (system_code const code = look_at(at, 0, status))
        return code;
    kind = kind_of(status.mode()) | (status.link ? FILE_ATTRIBUTE_REPARSE_POINT : 0);
    if (at.stream.empty())
        return {};
    kind &= ~FILE_ATTRIBUTE_DIRECTORY;
    stream_place stream;
    return find_stream(at, stream, status.about);
}

system_code attributes_at(resolved_path const & at, uint32 & bits, file_times * times) {
    file_status status;
    if (system_code const code = look_at(at, STATX_MODE | (times != nullptr ? STATX_MTIME | STATX_BTIME : 0), status))
        return code;
    // Most files have none of the two records; where only one is wanted, it is asked for at once.
    attribute_names names;
    if (host_error const error = !status.lost && times != nullptr ? names.list(at.at()) : host_error())
        return code_at(at, error);
    bool const recorded = times == nullptr || names.may_have(record_attribute);
    bits = FILE_ATTRIBUTE_ARCHIVE;
    if (system_code const code = status.lost ? system_code() : get_bits(*at.on, at.at(), status.mode(), recorded, bits))
        return code;
    bits |= status.link ? FILE_ATTRIBUTE_REPARSE_POINT : 0;
    stream_place stream;
    if (!at.stream.empty()) {
        bits &= ~FILE_ATTRIBUTE_DIRECTORY;
        bits = bits == 0 ? FILE_ATTRIBUTE_NORMAL : bits;
        if (system_code const code = find_stream(at, stream, status.about))
            return code;
    }
    if (times == nullptr)
        return {};
    host::at const timed = at.stream.empty() ? at.at() : stream.at();
    bool const dated = !at.stream.empty() || (!status.lost && names.may_have(created_attribute));
    return get_times_of(timed, status.about, dated, *times);
}

system_code attributes_at(resolved_path const & at, WIN32_FILE_ATTRIBUTE_DATA & data) {
    file_times times;
    system_code const code = attributes_at(at, data.dwFileAttributes, &times);
    data.ftCreationTime = times.created;
    data.ftLastWriteTime = times.modified;
    return code;
}

system_code set_attributes_of(volume const & on, host::at const & file, uint32 bits) {
    struct stat status {};
    if (host::stat(file, &status) != 0)
        return last_code();
    return set_bits(on, file, status, bits);
}

system_code set_attributes_at(resolved_path const & at, uint32 bits) {
    struct stat status {};
    if (host::stat(at.at(), &status) != 0)
        return last_code_at(at);
    if (at.is_folder && !S_ISDIR(status.st_mode))
        return ERROR_PATH_NOT_FOUND;
    return set_bits(*at.on, at.at(), status, bits);
}

} // namespace posix

uint32 GetFileAttributesW(wide_string const & path) {
    uint32 bits = 0;
    auto const ask = [&](posix::resolved_path const & at) { return posix::attributes_at(at, bits, nullptr); };
    return posix::report(posix::with_path(path, ask)) ? bits : INVALID_FILE_ATTRIBUTES;
}

uint32 GetFileKindW(wide_string const & path) {
    uint32 kind = 0;
    auto const ask = [&](posix::resolved_path const & at) { return posix::kind_at(at, kind); };
    return posix::report(posix::with_path(path, ask)) ? kind : INVALID_FILE_ATTRIBUTES;
}

bool GetFileAttributesExW(wide_string const & path, WIN32_FILE_ATTRIBUTE_DATA & data) {
    return posix::report(
        posix::with_path(path, [&](posix::resolved_path const & at) { return posix::attributes_at(at, data); }));
}

bool SetFileAttributesW(wide_string const & path, uint32 attributes) {
    return posix::report(posix::with_path(
        path, [&](posix::resolved_path const & at) { return posix::set_attributes_at(at, attributes); }));
}

} // namespace platform
