#include "socle/platform/file_times.h"

#include "socle/platform/posix/files/file_times.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/report.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace platform {

namespace posix {

namespace {

constexpr int64 units_per_second = 10'000'000;
constexpr int64 nanoseconds_per_unit = 100;
constexpr int64 seconds_1601_to_1970 = 11'644'473'600;

uint64 units_of(int64 seconds, int64 nanoseconds) {
    int64 const since_1601 = seconds + seconds_1601_to_1970;
    return since_1601 < 0 ? 0 : uint64(since_1601) * units_per_second + uint64(nanoseconds / nanoseconds_per_unit);
}

timespec host_time(uint64 units) {
    timespec time{};
    time.tv_sec = static_cast<time_t>(int64(units / units_per_second) - seconds_1601_to_1970);
    time.tv_nsec = static_cast<long>(units % units_per_second) * nanoseconds_per_unit;
    return time;
}

bool disk_time(host::at const & file, uint64 & units) {
    narrow_string value;
    if (get_attribute(file, ntfs_created_attribute, value) || value.size() != sizeof units)
        return false;
    std::copy(value.begin(), value.end(), reinterpret_cast<char *>(&units));
    return true;
}

/// Leaves `units` alone if there is none, or it is not ours.
system_code get_recorded_time(host::at const & file, uint64 & units) {
    narrow_string text;
    if (host_error const error = get_record_text(file, created_attribute, text))
        return code_of(error);
    read_number(text, 10, units);
    return {};
}

system_code get_times(int file, file_times & times) {
    struct statx status {};
    if (host::statx(host::at(file), 0, STATX_MTIME | STATX_BTIME, &status) != 0)
        return last_code();
    return get_times_of(host::at(file), status, true, times);
}

system_code set_created(host::at const & file, uint64 units) {
    uint64 now = 0;
    host_error const error =
        disk_time(file, now)
            ? set_attribute(file, ntfs_created_attribute, {reinterpret_cast<char const *>(&units), sizeof units})
            : set_attribute(file, created_attribute, std::to_string(units));
    return error == ENOTSUP ? system_code() : code_of(error);
}

system_code set_times(int handle, uint64 const * created, uint64 const * modified) {
    // By its path, a handle that is not open would be a missing file.
    struct stat status {};
    if (host::fstat(handle, &status) != 0)
        return last_code();
    host::at const file(handle);
    // The driver of an NTFS disk forgets the time of the change again when that of the creation comes first.
    if (modified != nullptr) {
        timespec const times[2] = {{0, UTIME_OMIT}, host_time(*modified)};
        if (host::utimensat(file, times) != 0)
            return last_code();
    }
    return created != nullptr ? set_created(file, *created) : system_code();
}

} // namespace

system_code get_times_of(host::at const & file, struct statx const & status, bool recorded, file_times & times) {
    times.modified = units_of(status.stx_mtime.tv_sec, status.stx_mtime.tv_nsec);
    bool const known = (status.stx_mask & STATX_BTIME) != 0;
    times.created = known ? units_of(status.stx_btime.tv_sec, status.stx_btime.tv_nsec) : times.modified;
    // The driver of an NTFS disk tells it by the attribute alone.
    bool const on_disk = !known && disk_time(file, times.created);
    return recorded && !on_disk ? get_recorded_time(file, times.created) : system_code();
}

} // namespace posix

bool GetFileTime(int file, uint64 & created, uint64 & modified) {
    posix::file_times times;
    bool const told = posix::report(posix::get_times(file, times));
    if (told) {
        created = times.created;
        modified = times.modified;
    }
    return told;
}

bool SetFileTime(int file, uint64 const * created, uint64 const * modified) {
    return posix::report(posix::set_times(file, created, modified));
}

} // namespace platform
