#include "common/host.h"

#include <socle/platform/host.h>

#include <system_error>
#include <windows.h>

namespace host {

namespace {

namespace fs = std::filesystem;

kind kind_by(fs::file_status const & status) {
    switch (status.type()) {
    case fs::file_type::not_found: return kind::nothing;
    case fs::file_type::regular: return kind::file;
    case fs::file_type::directory: return kind::folder;
    default: return kind::other;
    }
}

} // namespace

fs::path path_of(narrow_string const & path) { return platform::from_host(path); }

narrow_string text_of(fs::path const & path) { return platform::to_host(path.u16string()); }

bool backslash_separates() { return true; }

// What the standard library says of a path is of what a link leads to.
kind kind_of(narrow_string const & path) {
    return platform::is_link(platform::from_host(path)) ? kind::link : kind_behind(path);
}

kind kind_behind(narrow_string const & path) {
    std::error_code ignored;
    return kind_by(fs::status(path_of(path), ignored));
}

narrow_string words(uint32 code) { return std::system_category().message(static_cast<int>(code)); }

uint32 terminal_width() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    bool const told = GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info);
    return told && info.dwSize.X > 0 ? static_cast<uint32>(info.dwSize.X) : 80;
}

void report_closed_pipes() {} // there is no other way

} // namespace host
