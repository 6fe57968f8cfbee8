#include "tests/faults/frame.h"

#include "examples/catalog/carrier.h"
#include "examples/catalog/tree.h"
#include "examples/macbinary/packing.h"
#include "socle/io/attributes.h"
#include "socle/nio/attributes.h"
#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/platform/errors.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/stream/infinite_output.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <fcntl.h>
#include <iostream>
#include <sstream>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

// What the examples write: one unpacks and packs a file, one carries a folder with all forks into another.

// What the catalogue's program asks of the host by itself is counted too.
extern "C" int renameat2(int from_folder, char const * from, int to_folder, char const * to, unsigned flags) noexcept {
    auto const fault = platform::posix::host::fault;
    errno = fault != nullptr ? fault("rename_no_replace") : 0;
    return errno != 0 ? -1 : static_cast<int>(syscall(SYS_renameat2, from_folder, from, to_folder, to, flags));
}

// Where a folder is swapped at each call, these are counted as well, and nothing waits for the disk.
namespace {
void (*at_own_call)() = nullptr;

void own_call() {
    if (at_own_call != nullptr)
        at_own_call();
}
} // namespace

extern "C" int openat(int folder, char const * name, int flags, ...) {
    own_call();
    va_list more;
    va_start(more, flags);
    mode_t const mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return static_cast<int>(syscall(SYS_openat, folder, name, flags, mode));
}

extern "C" int mkdirat(int folder, char const * name, mode_t mode) noexcept {
    own_call();
    return static_cast<int>(syscall(SYS_mkdirat, folder, name, mode));
}

extern "C" int unlinkat(int folder, char const * name, int flags) noexcept {
    own_call();
    return static_cast<int>(syscall(SYS_unlinkat, folder, name, flags));
}

extern "C" int syncfs(int folder) noexcept {
    return at_own_call != nullptr ? 0 : static_cast<int>(syscall(SYS_syncfs, folder));
}

namespace faults {

namespace {

namespace fs = std::filesystem;

void prepare_packed(place const & where) {
    where.here.write("packed.bin", [] {
        std::ifstream in(TEST_SAMPLES "/both_forks.bin", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }());
    fs::create_directory(where.here.host("out"));
}

void prepare_unpacked(place const & where) {
    prepare_packed(where);
    archive packed(where.here.host("packed.bin"));
    fs::rename(unpack(packed, where.here.host("out")), where.here.host("out/made"));
    for (fs::path const & side : fs::directory_iterator(where.here.host("out")))
        if (side.has_extension())
            fs::rename(side, where.here.host("out/made") += side.extension());
}

/// The dates are the same whenever it is made; nothing of it is more than a sidecar can hold.
void give_finder_info(wide_string const & path) {
    io::attributes set;
    set.created = any::time(3'000'000'000, any::time::format_mac_seconds);
    set.modified = any::time(3'000'000'601, any::time::format_mac_seconds);
    io::mac::file_info info;
    info.flags = 0x1234;
    set.mac_file = io::mac::file_attributes(info, {});
    set.apply({any::string(path), true}, 1);
}

void prepare_forks(place const & where) {
    fs::create_directories(where.here.host("from/sub"));
    fs::create_directory(where.here.host("to"));
    where.here.write("to/kept", "kept");
    where.here.write("from/file", std::string(100000, 'd'));
    where.here.write("from/file.rsrc", "resources");
    give_finder_info(where.here.path("from/file"));
}

/// With an older file there, whose resource fork is another.
void prepare_update(place const & where) {
    prepare_forks(where);
    where.here.write("to/file", "old data");
    where.here.write("to/file.rsrc", "old resources");
    fs::last_write_time(where.here.host("to/file"), fs::file_time_type::clock::now() - std::chrono::years(90));
}

void prepare_streams(place const & where) {
    where.here.write("n/f", "data");
    put_stream(u"N:\\f:note", "note");
    put_stream(u"N:\\f:AFP_Resource", "AFP_");
    nio::attributes set;
    set.finder_info.fill('f');
    nio::item item(u"N:\\f");
    set.apply(item, true, true);
}

/// As the program does it, but for the words and the catalogue.
bool carry(place const & where, char const * from, char const * to, carrying const & how) {
    struct silence {
        std::streambuf * const words = std::cerr.rdbuf(nullptr);
        ~silence() { std::cerr.rdbuf(words); }
    } const here;
    // What could not be deleted is dealt with by the next run.
    struct emptied {
        fs::path folder;
        ~emptied() {
            uncounted const work;
            fs::remove_all(folder);
        }
    } const at_end{where.here.host(to) / ".catalog.part"};
    auto const root = platform::from_host(where.here.host(from));
    ::report told("", root, true);
    selection const all({}, {});
    carrier carrier(where.here.host(to), how, told);
    tree(
        "", root, [] { return true; }, all, nullptr, &carrier, told)
        .walk();
    // The program may have seen by itself that something was not kept.
    if (!told.good() && platform::last_error() == 0)
        platform::SetLastError(platform::ERROR_IO_DEVICE);
    return told.good();
}

scenario const table[] = {
    {"macbinary_unpacks", promise::whole, prepare_packed,
     [](place const & where, report &) {
         archive packed(where.here.host("packed.bin"));
         return unpack(packed, where.here.host("out")).size() > 0;
     }},
    {"macbinary_packs", promise::whole, prepare_unpacked,
     [](place const & where, report &) {
         pack(where.here.host("out/made"), where.here.host("again.bin"));
         return true;
     }},
};

constexpr carrying in_form(fork_form form, bool verify) {
    carrying how;
    how.form = form;
    how.verify = verify;
    return how;
}

scenario const catalog_table[] = {
    {"catalog_carries_to_doubles", promise::stepwise, prepare_forks,
     [](place const & where, report &) { return carry(where, "from", "to", in_form(fork_form::apple_double, false)); },
     scenario::nothing, true},
    {"catalog_carries_to_sidecars", promise::stepwise, prepare_forks,
     [](place const & where, report &) { return carry(where, "from", "to", in_form(fork_form::sidecar, true)); },
     scenario::nothing, true},
    {"catalog_replaces_sidecars", promise::stepwise, prepare_update,
     [](place const & where, report &) {
         auto how = in_form(fork_form::sidecar, false);
         how.update = true;
         return carry(where, "from", "to", how);
     },
     scenario::nothing, true},
    {"catalog_carries_to_streams", promise::stepwise, prepare_streams,
     [](place const & where, report &) { return carry(where, "n", "m", in_form(fork_form::stream, false)); },
     scenario::named_streams, true},
};

/// Where the folder is swapped for a link, and the call before which that happens.
struct swap {
    std::string folder, outside;
    int calls_left;
} swapped;

void swap_folder() {
    if (--swapped.calls_left != 0)
        return;
    uncounted const work;
    std::error_code ignored; // it may not be there yet
    fs::rename(swapped.folder, swapped.folder + ".away", ignored);
    if (!ignored)
        fs::create_directory_symlink(swapped.outside, swapped.folder);
}

/// All that a program that goes through the link could change of the folder behind it.
std::string state_of(std::string const & folder) {
    struct stat status {};
    check(stat(folder.c_str(), &status) == 0, "the folder outside is there");
    char names[256];
    std::ostringstream text;
    text << std::oct << status.st_mode << ' ' << status.st_mtim.tv_sec << ' ' << status.st_mtim.tv_nsec << ' '
         << listxattr(folder.c_str(), names, sizeof names) << ' ' << fs::is_empty(folder);
    return text.str();
}

struct target {
    char const * source;
    char const * folder;
    fork_form form;
    char const * swapped;
} const targets[] = {
    {"from", "to", fork_form::sidecar, "to"},
    {"from", "to", fork_form::sidecar, "to/sub"},
    {"from", "to", fork_form::sidecar, "to/.catalog.part"},
    {"from", "to", fork_form::apple_double, "to/sub"},
    {"n", "m", fork_form::stream, "m"},
    {"n", "m", fork_form::stream, "m/sub"},
    {"n", "m", fork_form::stream, "m/.catalog.part"},
};

// Each row begins at another call, and the steps are such that together they try every second one: whoever changes what
// the program asks of the host should run it once with a step of 1.
TEST(catalog, a_folder_that_is_swapped_for_a_link_leads_nowhere_else) {
    constexpr int step = 2 * std::size(targets);
    int first = -1;
    for (target const & each : targets) {
        bool through = false;
        for (int n = first += 2; !through; n += step) {
            place const where;
            if (each.form == fork_form::stream && !where.streams())
                break; // told by the tests of streams
            prepare_forks(where);
            fs::create_directory(where.here.host("n/sub"));
            give_finder_info(where.here.path("from/sub"));
            if (where.streams()) {
                prepare_streams(where);
                put_stream(u"N:\\sub:note", "note");
            }
            for (char const * source : {"from/sub/file", "n/sub/file"})
                where.here.write(source, "data");
            fs::create_directory(where.here.host("outside"));
            auto const before = state_of(where.here.host("outside"));
            swapped = {where.here.host(each.swapped), where.here.host("outside"), n};
            platform::posix::host::fault = [](char const *) { return swap_folder(), 0; };
            at_own_call = swap_folder;
            try {
                carry(where, each.source, each.folder, in_form(each.form, true));
            } catch (...) {
                // The program ends.
            }
            platform::posix::host::fault = nullptr;
            at_own_call = nullptr;
            through = swapped.calls_left > 0;
            ASSERT_EQ(state_of(where.here.host("outside")), before) << each.swapped << ", " << n;
        }
    }
}

TEST(catalog, a_folder_that_another_process_swaps_leads_nowhere_else) {
    for (target const & each :
         {target{"from", "to", fork_form::sidecar, "to/sub"}, target{"n", "m", fork_form::stream, "m/sub"}}) {
        place const where;
        if (each.form == fork_form::stream && !where.streams())
            break; // told by the tests of streams
        auto const source = std::string(each.source) + "/sub";
        for (auto const & folder : {source, std::string(each.swapped), std::string("outside")})
            fs::create_directories(where.here.host(folder));
        for (int i = 0; i < 100; ++i)
            where.here.write(source + '/' + std::to_string(i), "data");
        auto const before = state_of(where.here.host("outside"));
        std::string const here = where.here.host(each.swapped), link = here + ".link",
                          outside = where.here.host("outside");
        fs::create_directory_symlink(outside, link);
        auto const exchange = [&] {
            return syscall(SYS_renameat2, AT_FDCWD, here.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE) == 0;
        };
        ASSERT_TRUE(exchange() && exchange());
        pid_t const child = fork();
        while (child == 0)
            exchange();
        for (int turn = 0; turn < 10; ++turn) {
            try {
                carry(where, each.source, each.folder, in_form(each.form, true));
            } catch (...) {
                // The program ends.
            }
        }
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        EXPECT_EQ(state_of(outside), before) << each.swapped;
    }
}

} // namespace

std::span<scenario const> example_scenarios() { return table; }
std::span<scenario const> catalog_scenarios() { return catalog_table; }

} // namespace faults
