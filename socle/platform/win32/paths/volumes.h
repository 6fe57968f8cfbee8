#pragma once

#include "socle/platform/win32/host/system.h"

#include <string>
#include <string_view>

/// The volumes that the process has attached: its own, since a name that the system knows would outlive it. The table
/// only changes before threads start.
namespace platform::win32 {

struct volume {
    wchar_t letter;      // in capitals
    std::wstring folder; // absolute, without a separator at its end
    wide_string file_system;
};

/// The attached volume of an absolute path that begins with its letter; null if there is none.
volume const * volume_of_letter(std::wstring_view full);

/// The attached volume whose folder is the longest at or above an absolute path of the system's; null if there is none.
volume const * volume_at(std::wstring_view full);

} // namespace platform::win32
