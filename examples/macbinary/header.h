#pragma once

#include <socle/io/mac/info.h>
#include <socle/nio/time.h>
#include <socle/stream/input.h>
#include <socle/stream/output.h>

/// A header, field by field as it is stored; the numbers are big-endian.
///
/// | offset | bytes | field                                                                          |
/// |--------|-------|--------------------------------------------------------------------------------|
/// | 0      | 1     | 0                                                                              |
/// | 1      | 64    | the length of the name, then the name, up to 63 characters                     |
/// | 65     | 8     | type and creator                                                               |
/// | 73     | 1     | the high byte of the Finder flags                                              |
/// | 74     | 1     | 0                                                                              |
/// | 75     | 4     | location                                                                       |
/// | 79     | 3     | folder and protection, which say nothing about the file itself                 |
/// | 82     | 1     | 0                                                                              |
/// | 83     | 8     | the lengths of the data fork and the resource fork                             |
/// | 91     | 8     | created and modified, in seconds since 1904                                    |
/// | 99     | 2     | the length of a comment                                                        |
/// | 101    | 1     | the low byte of the Finder flags                                               |
/// | 120    | 2     | the length of a second header, which the forks stand behind                    |
/// | 122    | 2     | the version, 0 in the first generation, and the oldest that a reader must know |
/// | 124    | 2     | CRC of all that stands before it; the first generation has none                |
struct header {
    static constexpr uint32 size = 128;
    static constexpr uint32 longest_name = 63;
    static constexpr uint32 longest_fork = 0x7FFFFFFF;

    uint32 zeros = 0; // all the bytes that must be 0, joined
    std::size_t name_length = 0;
    narrow_string name;
    io::mac::file_info finder;
    uint32 data_length = 0;
    uint32 resource_length = 0;
    uint32 created = 0;
    uint32 modified = 0;
    uint16 second_length = 0;
    unsigned char version = 0;
    uint16 crc = 0;

    void read(stream::input & input);
    /// Writes a header of the second generation, with no second header; the CRC is worked out.
    void write(stream::output & output) const;

    /// Where the forks stand in the file, and where the last of them ends.
    uint64 data_at() const { return size + padded(second_length); }
    uint64 resource_at() const { return data_at() + padded(data_length); }
    uint64 end() const { return resource_length > 0 ? resource_at() + resource_length : data_at() + data_length; }

    /// With what fills the last block of 128 bytes.
    static uint64 padded(uint64 length) { return (length + size - 1) / size * size; }

    /// Whether this can be a header at all: the format has no mark that every generation bears.
    bool plausible() const;
};

/// Throws an `io::exception`, with the path as its origin, if the stream does not begin with a good header.
header header_of(stream::input & input, narrow_string const & path);

/// Seconds since 1904, in GMT, as a local date and time: `2026-11-22 13:04:25`.
narrow_string local_date(uint32 seconds);

/// Seconds since 1904; the nearest number there is for a time that has none.
uint32 mac_seconds(nio::time const & time);

/// As `0x12ab`.
narrow_string hex_16(uint16 value);
