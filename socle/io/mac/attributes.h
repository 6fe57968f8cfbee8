#pragma once

#include "socle/io/mac/extended_info.h"
#include "socle/io/mac/info.h"

namespace io::mac {

/// Both Finder records of a file. To store them, write one after the other, the basic record first.
class SOCLE_API file_attributes {
public:
    file_attributes() = default;
    /// Both records.
    file_attributes(file_info const & first, extended_file_info const & second) : info(first), extended(second) {}

    /// The basic record.
    file_info info;
    /// The extended record.
    extended_file_info extended;
};

/// Both Finder records of a folder. To store them, write one after the other, the basic record first.
class SOCLE_API folder_attributes {
public:
    folder_attributes() = default;
    /// Both records.
    folder_attributes(folder_info const & first, extended_folder_info const & second) : info(first), extended(second) {}

    /// The basic record.
    folder_info info;
    /// The extended record.
    extended_folder_info extended;
};

} // namespace io::mac
