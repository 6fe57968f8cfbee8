#include "tests/support/system.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#ifdef TEST_EMULATE
/// The test library runs a check in a process of its own by starting the program anew.
extern "C" int execv(char const * program, char * const * arguments) noexcept {
    std::vector<char *> command = {const_cast<char *>(TEST_EMULATE), const_cast<char *>(program)};
    do
        command.push_back(*++arguments);
    while (command.back() != nullptr);
    return execve(TEST_EMULATE, command.data(), environ);
}
#endif

namespace support {

namespace fs = std::filesystem;

fs::path path_of(std::string const & text) { return text; }

std::string text_of(fs::path const & path) { return path.string(); }

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

guarded_memory::guarded_memory()
    : start_(static_cast<char *>(mmap(nullptr, 3 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    if (mprotect(start_ + page, page, PROT_READ | PROT_WRITE) != 0)
        throw std::runtime_error("there is no memory");
}

guarded_memory::~guarded_memory() { munmap(start_, 3 * page); }

bool shares_type_information() { return true; }

bool starts_in_locales() { return true; }
bool is_in_locale(std::string const &) { return false; }

std::string limit_of_links() { return {}; }
std::string limit_of_creation_times() { return {}; }
std::string limit_of_times() { return {}; }
std::string limit_of_resizing() { return {}; }

/// Some emulators do not get past the first atomic operation where there is more than one process or thread.
std::string limit_of_processes() {
    int ends[2];
    if (!make_pipe(ends))
        return "no pipe can be made";
    pid_t const child = fork();
    if (child == 0) {
        std::atomic<int> volatile turns = 0;
        ++turns;
        _exit(0);
    }
    ::close(ends[1]);
    pollfd end = {ends[0], 0, 0}; // hung up when the child has ended
    bool const ended = poll(&end, 1, 10'000) == 1;
    if (!ended)
        kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ::close(ends[0]);
    return ended ? "" : "a second process or thread does not get on here: a limit of the emulator";
}

} // namespace support
