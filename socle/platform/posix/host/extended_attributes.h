#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"

#include <charconv>
#include <string_view>
#include <vector>

namespace platform::posix {

/// What the driver of a mounted NTFS disk gives: a file's attribute bits, four bytes, and its creation time, eight, as
/// the host keeps integers; and the list of its streams, their names with a zero byte between two.
constexpr char const * ntfs_bits_attribute = "system.ntfs_attrib";
constexpr char const * ntfs_created_attribute = "system.ntfs_crtime";
constexpr char const * ntfs_streams_attribute = "ntfs.streams.list";

/// The value of an extended attribute; links are followed. Empty on failure, which is ENODATA if there is none.
host_error get_attribute(host::at const & file, char const * name, narrow_string & value);

/// The same of what the library keeps beside a file. Empty as well where the host keeps none, or
/// shows none to this user.
host_error get_record_text(host::at const & file, char const * name, narrow_string & text);

/// The names of those that a file lists, asked for once where several might be read.
class attribute_names {
public:
    /// Links are followed. A file system that keeps none has none.
    host_error list(host::at const & file);
    /// True also where there are more than are kept here.
    bool may_have(std::string_view name) const;

private:
    char block_[1024];
    std::size_t size_ = 0; // of the names, with a zero byte behind each
    bool all_ = true;      // unless there are more
};

/// Reads the number that such a text is, all of it. False, and `number` left alone, where it is none.
template <typename Number>
bool read_number(std::string_view text, int base, Number & number) {
    Number read = 0;
    char const * const end = text.data() + text.size();
    auto const [last, error] = std::from_chars(text.data(), end, read, base);
    bool const whole = error == std::errc() && last == end;
    if (whole)
        number = read;
    return whole;
}

/// What the mode of a file has beside the owner's write bit while that is lifted: bits without a meaning of their own.
/// Where a process has ended then, the file is known for one that may not be written.
constexpr mode_t lifted_mark(mode_t mode) { return S_ISDIR(mode) ? S_ISUID : S_ISVTX; }
constexpr bool is_lifted(mode_t mode) { return (mode & S_IWUSR) != 0 && (mode & lifted_mark(mode)) != 0; }

/// Their names; links are followed. A file system that keeps none has none.
host_error list_attributes(host::at const & file, std::vector<narrow_string> & names);

/// Sets one; links are followed. A missing write bit of the owner is lifted for the moment that takes, when the file
/// has `lifted_mark`. With XATTR_CREATE in `flags` only one that is not there yet: EEXIST.
host_error set_attribute(host::at const & file, char const * name, narrow_string const & value, int flags = 0);

} // namespace platform::posix
