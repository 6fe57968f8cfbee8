#include "common/host.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace host {

namespace {

namespace fs = std::filesystem;

kind kind_by(fs::file_status const & status) {
    switch (status.type()) {
    case fs::file_type::not_found: return kind::nothing;
    case fs::file_type::regular: return kind::file;
    case fs::file_type::directory: return kind::folder;
    case fs::file_type::symlink: return kind::link;
    default: return kind::other;
    }
}

} // namespace

fs::path path_of(narrow_string const & path) { return path; }

narrow_string text_of(fs::path const & path) { return path.string(); }

bool backslash_separates() { return false; }

kind kind_of(narrow_string const & path) {
    std::error_code ignored;
    return kind_by(fs::symlink_status(path, ignored));
}

kind kind_behind(narrow_string const & path) {
    std::error_code ignored;
    return kind_by(fs::status(path, ignored));
}

narrow_string words(uint32 code) {
    static constexpr struct {
        uint32 code;
        int error;
    } table[] = {{2, ENOENT},   {3, ENOENT},         {4, EMFILE},   {5, EACCES},   {8, ENOMEM},
                 {17, EXDEV},   {19, EROFS},         {32, EBUSY},   {50, ENOTSUP}, {80, EEXIST},
                 {87, EINVAL},  {109, EPIPE},        {112, ENOSPC}, {123, EILSEQ}, {145, ENOTEMPTY},
                 {183, EEXIST}, {206, ENAMETOOLONG}, {232, EPIPE},  {267, EISDIR}, {1117, EIO}};
    for (auto const & row : table)
        if (row.code == code)
            return std::generic_category().message(row.error);
    return "error " + std::to_string(code) + " of the system";
}

uint32 terminal_width() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void report_closed_pipes() { std::signal(SIGPIPE, SIG_IGN); }

} // namespace host
