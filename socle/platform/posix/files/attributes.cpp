#include "socle/platform/posix/files/attributes.h"

#include "socle/platform/files.h"
#include "socle/platform/posix/files/file_times.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <cerrno>
#include <charconv>

namespace platform {

namespace posix {

namespace {

constexpr char const * disk_attribute = "system.ntfs_attrib";
/// The kept bits in hexadecimal digits.
constexpr char const * record_attribute = "user.socle.attributes";
constexpr uint32 kept_bits =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_TEMPORARY;

bool disk_bits(narrow_string const & path, uint32 & bits) {
    narrow_string value;
    if (!get_attribute(path, disk_attribute, true, value) || value.size() != 4)
        return false;
    bits = 0;
    for (std::size_t i = 4; i-- > 0;)
        bits = bits << 8 | static_cast<unsigned char>(value[i]);
    return true;
}

int set_disk_bits(narrow_string const & path, uint32 bits) {
    narrow_string value;
    for (int shift = 0; shift < 32; shift += 8)
        value += static_cast<char>(bits >> shift & 0xFF);
    return set_attribute(path, disk_attribute, value);
}

int status_of(narrow_string const & path, int flags, struct statx & status) {
    return host::statx(host::here, path, flags, STATX_TYPE | STATX_MODE | STATX_MTIME | STATX_BTIME, &status);
}

uint32 default_record(mode_t mode) { return S_ISDIR(mode) ? 0 : FILE_ATTRIBUTE_ARCHIVE; }

/// False if there is none, or it is not ours.
bool get_record(narrow_string const & path, uint32 & bits) {
    narrow_string text;
    if (!get_attribute(path, record_attribute, true, text))
        return false;
    char const * const end = text.data() + text.size();
    auto const [last, error] = std::from_chars(text.data(), end, bits, 16);
    bits &= kept_bits;
    return error == std::errc() && last == end;
}

/// Hosts that keep none drop it.
int set_record(narrow_string const & path, uint32 bits, mode_t mode) {
    uint32 now = default_record(mode);
    get_record(path, now);
    if (now == bits)
        return 0;
    char digits[8];
    int const error = set_attribute(path, record_attribute,
                                    narrow_string(digits, std::to_chars(digits, digits + sizeof digits, bits, 16).ptr));
    return error == ENOTSUP ? 0 : error;
}

/// `recorded` tells whether the file may have a record.
uint32 bits_of(volume const & on, narrow_string const & path, mode_t mode, bool recorded) {
    uint32 bits = 0;
    if (S_ISDIR(mode) || S_ISREG(mode)) {
        if (!on.ntfs_disk || !disk_bits(path, bits)) {
            bits = default_record(mode);
            if (recorded)
                get_record(path, bits);
        }
        bits &= kept_bits;
        bits |= is_read_only(on, path, mode) ? FILE_ATTRIBUTE_READONLY : 0;
    }
    if (S_ISDIR(mode))
        return bits | FILE_ATTRIBUTE_DIRECTORY;
    if (!S_ISREG(mode) && !S_ISLNK(mode))
        return FILE_ATTRIBUTE_DEVICE;
    return bits == 0 ? FILE_ATTRIBUTE_NORMAL : bits;
}

/// The bits, and the times too if `times` is not null.
uint32 attributes_at(std::u16string_view path, uint32 & bits, file_times * times) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    narrow_string file = at.host_path();
    struct statx status {};
    if (status_of(file, AT_SYMLINK_NOFOLLOW, status) != 0)
        return code_at(file, errno);
    bool const link = S_ISLNK(status.stx_mode);
    bool const lost = link && status_of(file, 0, status) != 0;
    // One question for both records is cheaper than two, but not than one.
    bool const recorded = times == nullptr || has_attributes(file);
    bits = lost ? FILE_ATTRIBUTE_ARCHIVE : bits_of(*at.on, file, status.stx_mode, recorded);
    bits |= link ? FILE_ATTRIBUTE_REPARSE_POINT : 0;
    if (!at.stream.empty()) {
        bits &= ~FILE_ATTRIBUTE_DIRECTORY;
        bits = bits == 0 ? FILE_ATTRIBUTE_NORMAL : bits;
        narrow_string stream;
        if (uint32 const code = at.on->streams->locate(at.host, at.stream, false, stream))
            return code;
        if (status_of(stream, AT_SYMLINK_NOFOLLOW, status) != 0)
            return code_of(errno);
        file = stream;
    }
    if (times != nullptr)
        *times = times_of(file, status, recorded || !at.stream.empty());
    return 0;
}

uint32 set_attributes_at(std::u16string_view path, uint32 bits) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    narrow_string const file = at.host_path();
    struct stat status {};
    if (host::stat(file, &status) != 0)
        return code_at(file, errno);
    if (!S_ISDIR(status.st_mode) && !S_ISREG(status.st_mode))
        return ERROR_NOT_SUPPORTED;
    uint32 now = 0;
    if (at.on->ntfs_disk && disk_bits(file, now)) {
        constexpr uint32 settable = kept_bits | FILE_ATTRIBUTE_READONLY;
        now = (now & ~(settable | FILE_ATTRIBUTE_NORMAL)) | (bits & settable);
        return code_of(set_disk_bits(file, now != 0 ? now : FILE_ATTRIBUTE_NORMAL));
    }
    if (int const error = set_record(file, bits & kept_bits, status.st_mode))
        return code_of(error);
    bool const read_only = (bits & FILE_ATTRIBUTE_READONLY) != 0;
    if (read_only == is_read_only(*at.on, file, status.st_mode))
        return 0;
    mode_t const mode = status.st_mode & 07777;
    constexpr mode_t all_write = S_IWUSR | S_IWGRP | S_IWOTH;
    return host::chmod(file, read_only ? mode & ~all_write : mode | S_IWUSR) == 0 ? 0 : code_at(file, errno);
}

} // namespace

bool is_read_only(volume const & on, narrow_string const & path, mode_t mode) {
    uint32 bits = 0;
    if (on.ntfs_disk && disk_bits(path, bits))
        return (bits & FILE_ATTRIBUTE_READONLY) != 0;
    return (mode & S_IWUSR) == 0;
}

} // namespace posix

uint32 GetFileAttributesW(wide_string const & path) {
    uint32 bits = 0;
    return posix::report(posix::attributes_at(path, bits, nullptr)) ? bits : INVALID_FILE_ATTRIBUTES;
}

bool GetFileAttributesExW(wide_string const & path, WIN32_FILE_ATTRIBUTE_DATA & data) {
    posix::file_times times;
    bool const there = posix::report(posix::attributes_at(path, data.dwFileAttributes, &times));
    data.ftCreationTime = times.created;
    data.ftLastWriteTime = times.modified;
    return there;
}

bool SetFileAttributesW(wide_string const & path, uint32 attributes) {
    return posix::report(posix::set_attributes_at(path, attributes));
}

} // namespace platform
