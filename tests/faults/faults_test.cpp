#include "tests/faults/frame.h"

#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/platform/directories.h"
#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/un/exception.h"
#include "tests/support/handles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <utility>

// Each call to the host, or each allocation, of a whole operation fails in turn, until the operation comes through.

namespace {

/// The call or allocation, counted from 1, that does not come about; 0 for none.
int calls_left = 0;
int allocations_left = 0;
std::ptrdiff_t allocated = 0;

void * allocate(std::size_t size) noexcept {
    if (allocations_left > 0 && --allocations_left == 0)
        return nullptr;
    void * const block = std::malloc(size == 0 ? 1 : size);
    allocated += block != nullptr;
    return block;
}

void * allocate_or_throw(std::size_t size) {
    if (void * const block = allocate(size))
        return block;
    throw std::bad_alloc();
}

void release(void * block) noexcept {
    allocated -= block != nullptr;
    std::free(block);
}

} // namespace

void * operator new(std::size_t size) { return allocate_or_throw(size); }
void * operator new[](std::size_t size) { return allocate_or_throw(size); }
void * operator new(std::size_t size, std::nothrow_t const &) noexcept { return allocate(size); }
void * operator new[](std::size_t size, std::nothrow_t const &) noexcept { return allocate(size); }
void operator delete(void * block) noexcept { release(block); }
void operator delete[](void * block) noexcept { release(block); }
void operator delete(void * block, std::size_t) noexcept { release(block); }
void operator delete[](void * block, std::size_t) noexcept { release(block); }
void operator delete(void * block, std::nothrow_t const &) noexcept { release(block); }
void operator delete[](void * block, std::nothrow_t const &) noexcept { release(block); }

namespace faults {

/// How a failing test names it.
void PrintTo(scenario const & s, std::ostream * out);
void PrintTo(scenario const & s, std::ostream * out) { *out << s.name; }

using namespace platform;
namespace fs = std::filesystem;

place::place() {
    fs::create_directory(here.host("n"));
    fs::create_directory(here.host("m"));
    streams_ = attach();
}

place::~place() {
    detach_volume('N');
    detach_volume('M');
}

bool place::attach() const {
    detach_volume('N');
    detach_volume('M');
    bool const first = attach_volume('N', here.host("n"), "NTFS") == 0;
    return attach_volume('M', here.host("m"), "NTFS") == 0 && first;
}

uncounted::uncounted()
    : fault_(std::exchange(posix::host::fault, nullptr)), allocations_(std::exchange(allocations_left, 0)) {}

uncounted::~uncounted() {
    posix::host::fault = fault_;
    allocations_left = allocations_;
}

void put_stream(wide_string const & path, std::string const & bytes) {
    nio::file file(path, nio::file::mode_anew);
    file.write(bytes.data(), static_cast<uint32>(bytes.size()));
}

void check(bool good, char const * what) {
    uncounted const words;
    EXPECT_TRUE(good) << what;
}

namespace {

// What happens instead of the call, beside the host's errors.
constexpr int no_memory = -1;
constexpr int killed = -2;
constexpr int halved = -3;

int instead = 0;
char const * failed_call = "";

/// Whether the call can end in this way.
bool can_be(int way, std::string_view call) {
    auto const one_of = [&](std::string_view calls) { return calls.find(call) != calls.npos; };
    switch (way) {
    case EINTR: return one_of("open openat read pread write pwrite flock fsync ftruncate close opendir");
    case EMFILE: return one_of("open openat opendir duplicate");
    case ENOSPC:
        return one_of("open write pwrite ftruncate fsync mkdir link symlink rename rename_no_replace setxattr");
    case ENOTSUP:
        return !call.ends_with("getxattr") && call != "listxattr"; // A host that keeps attributes does not deny it.
    case halved: return one_of("read pread write pwrite");
    default: return true;
    }
}

/// Once there, it lasts.
bool lasts(int way) { return way == ENOSPC || way == EMFILE; }

/// A way that not every scenario comes upon.
bool is_rare(int way) { return lasts(way) || way == EINTR || way == halved; }

int count_call(char const * call) {
    bool const again = lasts(instead) && *failed_call != '\0';
    if ((calls_left == 0 && !again) || !can_be(instead, call) || (!again && --calls_left > 0))
        return 0;
    failed_call = call;
    if (instead == killed)
        std::raise(SIGKILL);
    return instead == halved ? posix::host::half : instead;
}

/// Counts calls or allocations for as long as it lives.
struct counting {
    counting(int n, int fault) {
        instead = fault;
        failed_call = "";
        (fault == no_memory ? allocations_left : calls_left) = n;
        posix::host::fault = count_call;
    }
    ~counting() {
        posix::host::fault = nullptr;
        calls_left = allocations_left = 0;
    }
    static bool left() { return calls_left + allocations_left > 0; }
};

std::size_t open_descriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

using contents = std::map<std::string, std::string>;

/// All files below the place, with their streams.
contents all_in(place const & where) {
    contents found;
    for (std::string const & top : {where.here.folder(), where.there.folder()}) {
        for (fs::recursive_directory_iterator at(top), end; at != end; ++at) {
            if ((at->path().parent_path().filename() == "n" || at->path().parent_path().filename() == "m")
                && at->is_directory())
                at.disable_recursion_pending(); // the store
            if (!at->is_regular_file() || at->is_symlink())
                continue;
            std::string const name = (top == where.here.folder() ? "" : "there/") + fs::relative(*at, top).string();
            wide_string const path = from_host(at->path().string());
            found[name] = get(path);
            for (char const * const stream : {":note", ":AFP_Resource", ":AFP_AfpInfo"}) {
                wide_string const whole = path + wide_string(stream, stream + std::strlen(stream));
                if (GetFileAttributesW(whole) != INVALID_FILE_ATTRIBUTES)
                    found[name + stream] = get(whole);
            }
        }
    }
    return found;
}

struct outcome {
    bool done = false;
    bool ended = false;
    report written = 0;
    bool leaked = false;
    /// What failed went on failing, so that nothing could be put back.
    bool stuck = false;
};

/// Runs the act with what it may throw. `memory` allows for running out of it.
bool attempt(scenario const & s, place const & where, report & written, bool memory) {
    SetLastError(0);
    try {
        if (s.act(where, written))
            return true;
    } catch (nio::exception const &) {
    } catch (un::exception const &) {
    } catch (std::bad_alloc const &) {
        check(memory, "memory was there");
        return false;
    } catch (...) {
        check(false, "an exception that the library has not told of");
        return false;
    }
    check(GetLastError() != 0, "a failure without a code");
    return false;
}

outcome run_here(scenario const & s, place const & where, int n, int fault, bool & through) {
    outcome result;
    auto const descriptors = open_descriptors();
    auto const blocks = allocated;
    {
        counting const now(n, fault);
        result.done = attempt(s, where, result.written, fault == no_memory);
        through = counting::left();
        result.stuck = lasts(fault) && !through;
    }
    auto const kept = allocated;
    result.leaked = kept != blocks;
    EXPECT_EQ(open_descriptors(), descriptors) << "descriptors stay open";
    EXPECT_TRUE(result.done || (fault != EINTR && fault != halved)) << "a signal, or a short count, shows";
    EXPECT_TRUE(!result.done || fault == EINTR || std::string_view(failed_call) != "fsync") << "not on the disk";
    return result;
}

/// The report stands in memory that outlives the process.
outcome run_in_child(scenario const & s, place const & where, int n, bool & through) {
    void * const shared = mmap(nullptr, sizeof(report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    report & written = *new (shared) report(0);
    pid_t const child = fork();
    if (child == 0) {
        counting const now(n, killed);
        _exit(attempt(s, where, written, false) && !testing::Test::HasFailure() ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    through = WIFEXITED(status);
    EXPECT_EQ(through ? WEXITSTATUS(status) : WTERMSIG(status), through ? 0 : SIGKILL);
    outcome const result{through, !through, written};
    munmap(shared, sizeof(report));
    return result;
}

bool holds(contents const & all, std::string const & bytes) {
    return std::any_of(all.begin(), all.end(), [&](auto const & file) { return file.second == bytes; });
}

void check_contents(promise kept, contents const & before, contents const & after, contents const & now,
                    outcome const & result) {
    if (result.done || (kept == promise::whole && !result.ended && !result.stuck)) {
        EXPECT_EQ(now, result.done ? after : before);
        return;
    }
    auto const value = [](contents const & all, std::string const & name) {
        auto const found = all.find(name);
        return found != all.end() ? found->second : "(none)";
    };
    for (auto const & [name, bytes] : now) {
        // Where a name could not be had, the file may have got the next one.
        bool const next = name.ends_with("_1");
        std::string const asked = next ? name.substr(0, name.size() - 2) : name;
        std::string const done = value(after, asked);
        bool const part = kept == promise::growing && bytes.size() >= result.written && done.starts_with(bytes);
        bool const known = before.contains(asked) || after.contains(asked);
        // What could not be put back goes with the next move to the same place.
        bool const left = result.ended || (result.stuck && asked.find("/.socle_") != asked.npos);
        EXPECT_TRUE((!next && bytes == value(before, name)) || bytes == done || part || (!known && left))
            << name << " has " << bytes.size() << " bytes, " << result.written << " were reported";
    }
    for (auto const & [name, bytes] : before) {
        EXPECT_TRUE(now.contains(name) || !after.contains(name)) << name << " is lost";
        if (kept == promise::whole && holds(after, bytes))
            EXPECT_TRUE(holds(now, bytes)) << "what " << name << " had is lost";
    }
}

/// The number of streams that are kept, with files or without.
std::size_t streams_in(place const & where) {
    std::size_t found = 0;
    for (char const * const store : {"n/.socle_streams", "m/.socle_streams"}) {
        std::error_code missing;
        for (fs::recursive_directory_iterator at(where.here.host(store), missing), end; at != end; ++at)
            found += at->is_regular_file();
    }
    return found;
}

void sweep_both() {
    EXPECT_EQ(sweep_volume('N'), 0u);
    EXPECT_EQ(sweep_volume('M'), 0u);
}

class each_fault : public testing::TestWithParam<std::tuple<scenario, int>> {};

TEST_P(each_fault, keeps_the_promise) {
    auto const & [s, fault] = GetParam();
    if (fault == killed) {
        auto const limit = support::limit_of_processes();
        if (!limit.empty())
            GTEST_SKIP() << limit;
    }
    contents before;
    contents after;
    report all = 0;
    {
        place const where;
        if (s.needed == scenario::another_file_system && !where.two_file_systems())
            GTEST_SKIP() << "there is one file system only";
        if (s.needed == scenario::named_streams && !where.streams())
            GTEST_SKIP() << "no extended attributes in the folder for tests";
        s.prepare(where);
        where.attach();
        before = all_in(where);
        ASSERT_TRUE(attempt(s, where, all, false));
        where.attach();
        after = all_in(where);
    }
    bool again = false;
    for (int n = 1;; ++n) {
        ASSERT_LT(n, 3000);
        place const where;
        s.prepare(where);
        bool through = false;
        outcome result = fault == killed ? run_in_child(s, where, n, through) : run_here(s, where, n, fault, through);
        SCOPED_TRACE(std::to_string(n) + ", " + failed_call);
        // What is made once stays, as the text of a first failure: a leak comes again.
        EXPECT_TRUE(!result.leaked || !again) << "blocks stay allocated";
        // A process that comes later finds as much, and can go on.
        bool const usable = s.needed != scenario::named_streams || where.attach();
        check_contents(s.kept, before, after, all_in(where), result);
        EXPECT_TRUE(!s.leaves_no_orphans || result.stuck || streams_in(where) == (sweep_both(), streams_in(where)));
        if (s.made_up_for) {
            report unread = 0;
            attempt(s, where, unread, false); // may tell of a date that the first one could not give
            EXPECT_EQ(all_in(where), after);
        }
        EXPECT_TRUE(usable && (s.needed != scenario::named_streams || put(u"N:\\f:later", "") == 0));
        if (through && !result.leaked) {
            EXPECT_TRUE(result.done);
            EXPECT_TRUE(n > 1 || is_rare(fault)) << "no call was counted";
            break;
        }
        if (HasFailure())
            break;
        again = result.leaked;
        n -= again;
    }
}

std::string name_of(testing::TestParamInfo<std::tuple<scenario, int>> const & info) {
    auto const & [s, fault] = info.param;
    return std::string(s.name) + "_"
           + (fault == no_memory ? "no_memory"
              : fault == killed  ? "killed"
              : fault == halved  ? "halved"
                                 : strerrorname_np(fault));
}

auto each(std::span<scenario const> scenarios, auto faults) {
    return testing::Combine(testing::ValuesIn(scenarios.begin(), scenarios.end()), faults);
}

auto const all_faults =
    testing::Values(EINTR, EROFS, ENOTSUP, EIO, EPERM, ENOSPC, EMFILE, int(halved), int(no_memory), int(killed));

INSTANTIATE_TEST_SUITE_P(files, each_fault, each(file_scenarios(), all_faults), name_of);
INSTANTIATE_TEST_SUITE_P(folders, each_fault, each(folder_scenarios(), all_faults), name_of);
INSTANTIATE_TEST_SUITE_P(examples, each_fault, each(example_scenarios(), all_faults), name_of);
// As long as all others together, and so not tried in each way.
INSTANTIATE_TEST_SUITE_P(catalog, each_fault,
                         each(catalog_scenarios(), testing::Values(EIO, ENOSPC, EMFILE, int(halved), int(killed))),
                         name_of);
INSTANTIATE_TEST_SUITE_P(memory, each_fault, each(memory_scenarios(), testing::Values(int(no_memory))), name_of);

} // namespace
} // namespace faults
