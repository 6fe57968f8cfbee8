#pragma once

#include "socle/io/mac/os_type.h"
#include "socle/io/mac/point.h"
#include "socle/io/mac/rect.h"

namespace io::mac {

/// The base of the two basic Finder records. The flag words are kept bit for bit; reserved bytes are skipped on reading
/// and written as 0. `strict` is ignored: see each `read`.
class SOCLE_API info : public un::structure {
public:
    info(info const &) = default;
    info & operator=(info const &) = default;
    ~info() override;

    /// The length of a basic record.
    static uint32 const info_size = 16;

protected:
    info() = default;
};

/// What the Finder keeps about a file.
///
/// | offset | bytes | member   |
/// |--------|-------|----------|
/// | 0      | 4     | type     |
/// | 4      | 4     | creator  |
/// | 8      | 2     | flags    |
/// | 10     | 4     | location |
/// | 14     | 2     | reserved |
class SOCLE_API file_info : public info {
public:
    file_info() = default;
    file_info(file_info const &) = default;
    file_info & operator=(file_info const &) = default;
    ~file_info() override;

    /// Reads the stored form and returns its length. Throws as `os_type` does where the stream ends within `type` or
    /// `creator`. Numbers behind the end have all bits set.
    uint32 read(stream::input & input, bool strict) override;
    /// Writes the stored form and returns its length.
    uint32 write(stream::output & output) const override;
    /// The stored length.
    uint32 size() const override;
    /// The stored length.
    static constexpr uint32 fixed_size() { return info_size; }

    /// What kind of document this is.
    os_type type;
    /// The program that it belongs to.
    os_type creator;
    /// The Finder's flags.
    uint16 flags = 0;
    /// The place of the icon.
    point location;
};

/// What the Finder keeps about a folder.
///
/// | offset | bytes | member   |
/// |--------|-------|----------|
/// | 0      | 8     | bounds   |
/// | 8      | 2     | flags    |
/// | 10     | 4     | location |
/// | 14     | 2     | reserved |
class SOCLE_API folder_info : public info {
public:
    folder_info() = default;
    folder_info(folder_info const &) = default;
    folder_info & operator=(folder_info const &) = default;
    ~folder_info() override;

    /// Reads the stored form and returns its length. Numbers behind the end of the stream have all bits set.
    uint32 read(stream::input & input, bool strict) override;
    /// Writes the stored form and returns its length.
    uint32 write(stream::output & output) const override;
    /// The stored length.
    uint32 size() const override;
    /// The stored length.
    static constexpr uint32 fixed_size() { return info_size; }

    /// The place of the folder's window.
    rect bounds;
    /// The Finder's flags.
    uint16 flags = 0;
    /// The place of the icon.
    point location;
};

} // namespace io::mac
