#include "platform/posix/attributes.h"

#include "platform/files.h"
#include "platform/posix/error_codes.h"
#include "platform/posix/extended_attributes.h"
#include "platform/posix/report.h"
#include "platform/posix/resolve.h"

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
    if (!get_attribute(path, disk_attribute, true, value) || value.size() != 4) {
        return false;
    }
    bits = 0;
    for (std::size_t i = 4; i-- > 0;) {
        bits = bits << 8 | static_cast<unsigned char>(value[i]);
    }
    return true;
}

int set_disk_bits(narrow_string const & path, uint32 bits) {
    narrow_string value;
    for (int shift = 0; shift < 32; shift += 8) {
        value += static_cast<char>(bits >> shift & 0xFF);
    }
    return set_attribute(path, disk_attribute, value);
}

uint32 default_record(struct stat const & status) { return S_ISDIR(status.st_mode) ? 0 : FILE_ATTRIBUTE_ARCHIVE; }

/// False if there is none, or it is not ours.
bool get_record(narrow_string const & path, uint32 & bits) {
    narrow_string text;
    if (!get_attribute(path, record_attribute, true, text)) {
        return false;
    }
    char const * const end = text.data() + text.size();
    auto const [last, error] = std::from_chars(text.data(), end, bits, 16);
    bits &= kept_bits;
    return error == std::errc() && last == end;
}

/// Hosts that keep none drop it.
int set_record(narrow_string const & path, uint32 bits, struct stat const & status) {
    uint32 now = default_record(status);
    get_record(path, now);
    if (now == bits) {
        return 0;
    }
    char digits[8];
    int const error = set_attribute(path, record_attribute,
                                    narrow_string(digits, std::to_chars(digits, digits + sizeof digits, bits, 16).ptr));
    return error == ENOTSUP ? 0 : error;
}

uint32 bits_of(volume const & on, narrow_string const & path, struct stat const & status) {
    uint32 bits = 0;
    if (S_ISDIR(status.st_mode) || S_ISREG(status.st_mode)) {
        if (!on.ntfs_disk || !disk_bits(path, bits)) {
            bits = default_record(status);
            get_record(path, bits);
        }
        bits &= kept_bits;
        bits |= is_read_only(on, path, status) ? FILE_ATTRIBUTE_READONLY : 0;
    }
    if (S_ISDIR(status.st_mode)) {
        return bits | FILE_ATTRIBUTE_DIRECTORY;
    }
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) {
        return FILE_ATTRIBUTE_DEVICE;
    }
    return bits == 0 ? FILE_ATTRIBUTE_NORMAL : bits;
}

uint32 attributes_at(std::u16string_view path, uint32 & bits) {
    resolved_path at;
    if (uint32 const code = resolve(path, at)) {
        return code;
    }
    narrow_string const file = at.host_path();
    struct stat status {};
    struct stat target {};
    if (host::lstat(file, &status) != 0) {
        return code_at(file, errno);
    }
    bool const link = S_ISLNK(status.st_mode);
    bool const target_there = link && host::stat(file, &target) == 0;
    bits = link && !target_there ? FILE_ATTRIBUTE_ARCHIVE : bits_of(*at.on, file, target_there ? target : status);
    bits |= link ? FILE_ATTRIBUTE_REPARSE_POINT : 0;
    if (at.stream.empty()) {
        return 0;
    }
    bits &= ~FILE_ATTRIBUTE_DIRECTORY;
    bits = bits == 0 ? FILE_ATTRIBUTE_NORMAL : bits;
    narrow_string stream;
    uint32 const code = at.on->streams->locate(at.host, at.stream, false, stream);
    return code != 0 ? code : host::lstat(stream, &status) == 0 ? 0 : code_of(errno);
}

uint32 set_attributes_at(std::u16string_view path, uint32 bits) {
    resolved_path at;
    if (uint32 const code = resolve(path, at)) {
        return code;
    }
    narrow_string const file = at.host_path();
    struct stat status {};
    if (host::stat(file, &status) != 0) {
        return code_at(file, errno);
    }
    if (!S_ISDIR(status.st_mode) && !S_ISREG(status.st_mode)) {
        return ERROR_NOT_SUPPORTED;
    }
    uint32 now = 0;
    if (at.on->ntfs_disk && disk_bits(file, now)) {
        constexpr uint32 settable = kept_bits | FILE_ATTRIBUTE_READONLY;
        now = (now & ~(settable | FILE_ATTRIBUTE_NORMAL)) | (bits & settable);
        return code_of(set_disk_bits(file, now != 0 ? now : FILE_ATTRIBUTE_NORMAL));
    }
    if (int const error = set_record(file, bits & kept_bits, status)) {
        return code_of(error);
    }
    bool const read_only = (bits & FILE_ATTRIBUTE_READONLY) != 0;
    if (read_only == is_read_only(*at.on, file, status)) {
        return 0;
    }
    mode_t const mode = status.st_mode & 07777;
    constexpr mode_t all_write = S_IWUSR | S_IWGRP | S_IWOTH;
    return host::chmod(file, read_only ? mode & ~all_write : mode | S_IWUSR) == 0 ? 0 : code_at(file, errno);
}

} // namespace

bool is_read_only(volume const & on, narrow_string const & path, struct stat const & status) {
    uint32 bits = 0;
    if (on.ntfs_disk && disk_bits(path, bits)) {
        return (bits & FILE_ATTRIBUTE_READONLY) != 0;
    }
    return (status.st_mode & S_IWUSR) == 0;
}

} // namespace posix

uint32 GetFileAttributesW(wide_string const & path) {
    uint32 bits = 0;
    return posix::report(posix::attributes_at(path, bits)) ? bits : INVALID_FILE_ATTRIBUTES;
}

bool SetFileAttributesW(wide_string const & path, uint32 attributes) {
    return posix::report(posix::set_attributes_at(path, attributes));
}

} // namespace platform
