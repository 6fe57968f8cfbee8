#include "tests/support/system.h"

#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace support {

namespace fs = std::filesystem;

fs::path make_folder(fs::path const & parent) {
    std::string pattern = (parent.empty() ? "/var/tmp" : parent.string()) + "/socle_test_XXXXXX";
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no folder can be made for " + pattern);
    return fs::canonical(pattern);
}

void remove_folder(fs::path const & folder) {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

bool is_there(fs::path const & path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

void set_variable(char const * name, char const * value) {
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

void make_link(std::string const & target, fs::path const & link) { fs::create_symlink(target, link); }

bool make_fifo(fs::path const & path) { return mkfifo(path.c_str(), 0600) == 0; }

bool make_pipe(int (&ends)[2]) { return pipe2(ends, O_CLOEXEC) == 0; }

bool make_read_only(fs::path const & file) {
    fs::permissions(file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    return true;
}

bool tells_case() { return true; }

standard_input::standard_input() : before_(dup(STDIN_FILENO)) {}

standard_input::~standard_input() {
    dup2(static_cast<int>(before_), STDIN_FILENO);
    ::close(static_cast<int>(before_));
}

void standard_input::comes_from(fs::path const & file) {
    int const opened = open(file.c_str(), O_RDONLY);
    dup2(opened, STDIN_FILENO);
    ::close(opened);
}

void standard_input::close() { ::close(STDIN_FILENO); }

library::library(fs::path const & file) : loaded_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

library::~library() {
    if (loaded_ != nullptr)
        dlclose(loaded_);
}

void (*library::find(char const * name) const)() {
    return loaded_ != nullptr ? reinterpret_cast<void (*)()>(dlsym(loaded_, name)) : nullptr;
}

bool library::is_loaded(fs::path const & file) {
    void * const there = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (there != nullptr)
        dlclose(there);
    return there != nullptr;
}

bool starts_in_locales() { return true; }
bool is_in_locale(std::string const &) { return false; }

std::string limit_of_links() { return {}; }
std::string limit_of_creation_times() { return {}; }
std::string limit_of_times() { return {}; }
std::string limit_of_resizing() { return {}; }
std::string limit_of_attributes() { return {}; }

} // namespace support
