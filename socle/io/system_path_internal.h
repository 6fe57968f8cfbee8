#pragma once

#include "socle/any/path.h"
#include "socle/io/item.h"
#include "socle/platform/ansi_text.h"
#include "socle/platform/files.h"

#include <utility>

namespace io {

/// How a path or a name in a folder goes to the system: as it stands, or as what its narrow form says. Every call of
/// this family goes through here.
inline wide_string system_name(any::string text) {
    return wide_calls ? wide_string(std::move(text)) : platform::from_ansi(text.str(true));
}

inline wide_string system_name(any::path const & path) { return system_name(path.full_string()); }

/// What kind of thing a path leads to, or that there is nothing. Opens nothing.
class system_kind {
public:
    explicit system_kind(any::path const & path) : bits_(platform::GetFileKindW(system_name(path))) {}

    bool exists() const { return bits_ != platform::INVALID_FILE_ATTRIBUTES; }
    bool directory() const { return has(platform::FILE_ATTRIBUTE_DIRECTORY); }
    bool link() const { return has(platform::FILE_ATTRIBUTE_REPARSE_POINT); }
    /// What is neither file nor folder: opening it may have effects, and reading it may wait.
    bool device() const { return has(platform::FILE_ATTRIBUTE_DEVICE); }

private:
    bool has(uint32 bit) const { return exists() && (bits_ & bit) != 0; }

    uint32 bits_;
};

} // namespace io
