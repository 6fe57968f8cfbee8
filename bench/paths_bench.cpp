// Questions about one path, and a fork that is opened for its first KiB, beside the calls that the host needs for them.

#include "bench/paths_data.h"
#include "socle/io/directory.h"
#include "socle/io/open_fork.h"
#include "socle/nio/attributes.h"
#include "socle/nio/file.h"

#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

namespace fs = std::filesystem;
using bench::add_path;

wide_string const & wide_path() {
    static wide_string const path = platform::from_host(bench::asked_path());
    return path;
}

any::path const & path() {
    static any::path const made(any::string(wide_path()), true);
    return made;
}

bool stat_path(std::string const & path) {
    struct stat about;
    return stat(path.c_str(), &about) == 0;
}

[[maybe_unused]] bool const registered = [] {
    add_path(bench::exists_row, "limit: lstat", [](std::string const & path) {
        struct stat about;
        return lstat(path.c_str(), &about) == 0;
    });
    add_path(bench::exists_row, "socle, io::item", [](std::string const &) { return io::item(path()).exists(); });
    add_path(bench::exists_row, "socle, nio::exists", [](std::string const &) { return nio::exists(wide_path()); });
    add_path(bench::exists_row, "std::filesystem", [](std::string const & path) { return fs::exists(path); });

    add_path(bench::folder_row, "limit: stat", stat_path);
    add_path(bench::folder_row, "socle, io::item", [](std::string const &) { return !io::item(path()).directory(); });
    add_path(bench::folder_row, "socle, nio::is_directory",
             [](std::string const &) { return !nio::is_directory(wide_path()); });
    add_path(bench::folder_row, "std::filesystem", [](std::string const & path) { return !fs::is_directory(path); });

    char const * const attributes = "path: its attributes and times";
    add_path(attributes, "limit: stat and listxattr", [](std::string const & path) {
        char names[256];
        return stat_path(path) && listxattr(path.c_str(), names, sizeof names) >= 0;
    });
    add_path(attributes, "socle, io::attributes", [](std::string const &) {
        io::attributes loaded;
        loaded.load(path(), io::attributes::no_sidecar);
        return !loaded.read_only.value();
    });
    add_path(attributes, "std::filesystem, size, time and rights", [](std::string const & path) {
        benchmark::DoNotOptimize(fs::file_size(path));
        benchmark::DoNotOptimize(fs::last_write_time(path));
        return (fs::status(path).permissions() & fs::perms::owner_write) != fs::perms::none;
    });

    add_path(bench::fork_row, "limit: open, read and close", [](std::string const & path) {
        bench::host_file const in(path, O_RDONLY | O_CLOEXEC);
        char bytes[1024];
        return read(in, bytes, sizeof bytes) == sizeof bytes;
    });
    add_path(bench::fork_row, "socle, io::open_fork", [](std::string const &) {
        io::file file(path());
        io::open_fork const in(file.data_fork());
        char bytes[1024];
        return in->read(bytes, sizeof bytes) == sizeof bytes;
    });
    add_path(bench::fork_row, "socle, nio::file", [](std::string const &) {
        nio::file in(wide_path(), nio::file::mode_read);
        char bytes[1024];
        return in.read(bytes, sizeof bytes) == sizeof bytes;
    });
    add_path(bench::fork_row, "std::ifstream", [](std::string const & path) {
        std::ifstream in(path, std::ios::binary);
        char bytes[1024];
        return bool(in.read(bytes, sizeof bytes));
    });
    return true;
}();

} // namespace
