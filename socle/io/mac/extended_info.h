#pragma once

#include "socle/io/mac/point.h"

namespace io::mac {

/// The base of the two extended Finder records, each of which follows a basic one. The flag words are kept bit for bit;
/// reserved bytes are skipped on reading and written as 0. A stream that ends too early is no error, whatever
/// `strict` says: numbers behind its end have all bits set.
class SOCLE_API extended_info : public un::structure {
public:
    extended_info(extended_info const &) = default;
    extended_info & operator=(extended_info const &) = default;
    ~extended_info() override;

protected:
    extended_info() = default;
};

/// What else the Finder keeps about a file.
///
/// | offset | bytes | member             |
/// |--------|-------|--------------------|
/// | 0      | 8     | reserved           |
/// | 8      | 2     | extended_flags     |
/// | 10     | 2     | reserved2          |
/// | 12     | 4     | put_away_folder_id |
class SOCLE_API extended_file_info : public extended_info {
public:
    extended_file_info() = default;
    extended_file_info(extended_file_info const &) = default;
    extended_file_info & operator=(extended_file_info const &) = default;
    ~extended_file_info() override;

    /// Reads the stored form and returns its length.
    uint32 read(stream::input & input, bool strict) override;
    /// Writes the stored form and returns its length.
    uint32 write(stream::output & output) const override;
    /// The stored length.
    uint32 size() const override;
    /// The stored length.
    static constexpr uint32 fixed_size() { return 16; }

    /// Flags of the Finder, as they are stored.
    uint16 extended_flags = 0;
    /// Kept, but without a meaning.
    uint16 reserved2 = 0;
    /// The folder from which the Finder moved the item to the desktop.
    uint32 put_away_folder_id = 0;
};

/// What else the Finder keeps about a folder.
///
/// | offset | bytes | member             |
/// |--------|-------|--------------------|
/// | 0      | 4     | scroll_position    |
/// | 4      | 4     | reserved           |
/// | 8      | 2     | extended_flags     |
/// | 10     | 2     | reserved2          |
/// | 12     | 4     | put_away_folder_id |
class SOCLE_API extended_folder_info : public extended_info {
public:
    extended_folder_info() = default;
    extended_folder_info(extended_folder_info const &) = default;
    extended_folder_info & operator=(extended_folder_info const &) = default;
    ~extended_folder_info() override;

    /// Reads the stored form and returns its length.
    uint32 read(stream::input & input, bool strict) override;
    /// Writes the stored form and returns its length.
    uint32 write(stream::output & output) const override;
    /// The stored length.
    uint32 size() const override;
    /// The stored length.
    static constexpr uint32 fixed_size() { return 16; }

    /// How far the window is scrolled.
    point scroll_position;
    /// Flags of the Finder, as they are stored.
    uint16 extended_flags = 0;
    /// Kept, but without a meaning.
    uint16 reserved2 = 0;
    /// The folder from which the Finder moved the item to the desktop.
    uint32 put_away_folder_id = 0;
};

} // namespace io::mac
