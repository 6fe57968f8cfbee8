// What is set up while the library is loaded, all of it here, in this order.

#include "socle/any/converter.h"
#include "socle/any/name.h"
#include "socle/any/path.h"
#include "socle/io/directory.h"
#include "socle/io/item.h"
#include "socle/nio/found_at_load_internal.h"
#include "socle/platform/backup.h"
#include "socle/platform/clock.h"
#include "socle/platform/directories.h"
#include "socle/platform/environment.h"
#include "socle/un/exception.h"
#include "socle/un/timer.h"

// The code pages that a text can go through. Empty until the first converter is made.

std::vector<uint32> any::converter::installed_pages_;

any::name const any::name::null;
any::path const any::path::null;

// The counts in a second of the machine's counter. Without a counter the library does not come up.

constinit uint64 un::timer::units_per_second = 1000;

namespace {

struct timer_start : un::timer {
    timer_start() : un::timer(false) {
        if (!platform::QueryPerformanceFrequency(units_per_second))
            throw un::exception("cannot initialize the timer", "un");
    }
} const start_timer;

} // namespace

// Whether names can go to the system in 16 bits.

bool io::wide_calls = [] {
    platform::WIN32_FIND_DATAW found;
    return platform::search_handle(platform::FindFirstFileW(u".", found)) != nullptr;
}();

// The working directory: without ".", its path has no elements.

io::directory io::directory::current(any::path(any::string(u"."), true));

// Whether this is the system with NTFS streams. There, backups may go past what the user could open otherwise.

bool const nio::platform_is_nt = [] {
    bool const is_nt = platform::GetVersionExA() == platform::VER_PLATFORM_WIN32_NT;
    if (is_nt)
        platform::EnableBackupPrivileges();
    return is_nt;
}();

// The time zone, which stays as it was for the life of the process.

platform::TIME_ZONE_INFORMATION nio::zone_at_load = [] {
    platform::TIME_ZONE_INFORMATION zone;
    platform::GetTimeZoneInformation(zone);
    return zone;
}();
