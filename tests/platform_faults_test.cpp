#include "nio/attributes.h"
#include "nio/directory.h"
#include "nio/exception.h"
#include "nio/file.h"
#include "platform/directories.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/posix/host_calls.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <set>
#include <string_view>

// Each call to the host of a whole operation fails in turn: what was there is there still, the code says why, and no
// descriptor stays open.

namespace {

using namespace platform;
namespace fs = std::filesystem;

int calls_left = 0;
int injected = 0;
bool interrupted = false;

/// Calls that a signal may interrupt.
bool can_be_interrupted(std::string_view call) {
    static std::set<std::string_view> const calls = {"open",  "openat", "read",      "pread", "write",  "pwrite",
                                                     "flock", "fsync",  "ftruncate", "close", "opendir"};
    return calls.contains(call);
}

int fail_one(char const * call) {
    if (injected == EINTR && !can_be_interrupted(call))
        return 0;
    if (calls_left == 0 || --calls_left > 0)
        return 0;
    interrupted = true;
    return injected;
}

std::size_t open_descriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

struct outcome {
    bool done;
    uint32 code;
};

/// Runs `act` in a folder that `prepare` has set up, with its n-th call failing by `error`, for every n.
void each_fault(std::function<void(scratch const &)> const & prepare, std::function<bool(scratch const &)> const & act,
                std::function<void(scratch const &, outcome)> const & check) {
    for (int const error : {EINTR, EMFILE, ENOSPC, EROFS, ENOTSUP, EIO}) {
        for (int n = 1;; ++n) {
            SCOPED_TRACE(std::string(strerrorname_np(error)) + " at call " + std::to_string(n));
            ASSERT_LT(n, 200);
            scratch const folder;
            prepare(folder);
            auto const before = open_descriptors();
            calls_left = n;
            injected = error;
            interrupted = false;
            posix::host::fault = fail_one;
            SetLastError(0);
            bool done = false;
            try {
                done = act(folder);
            } catch (nio::exception const &) {
            }
            outcome const result{done, GetLastError()};
            posix::host::fault = nullptr;
            EXPECT_EQ(open_descriptors(), before);
            check(folder, result);
            EXPECT_TRUE(done || error != EINTR) << "a signal shows";
            EXPECT_TRUE(done || result.code != 0);
            if (!interrupted) {
                EXPECT_TRUE(done);
                EXPECT_GT(n, 1) << "no call was counted";
                break;
            }
        }
    }
}

bool write_file(wide_string const & path, uint32 disposition, std::string const & text) {
    int const file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, disposition, 0);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    uint32 written = 0;
    bool const done = WriteFile(file, text.data(), static_cast<uint32>(text.size()), written) && FlushFileBuffers(file);
    uint32 const code = GetLastError();
    bool const closed = CloseHandle(file);
    if (!done)
        SetLastError(code);
    return done && closed;
}

TEST(platform_faults, a_file_made_anew_is_emptied_only_when_all_else_worked) {
    each_fault([](scratch const & folder) { folder.write("file", "old"); },
               [](scratch const & folder) { return write_file(folder.path("file"), CREATE_ALWAYS, "brand new"); },
               [](scratch const & folder, outcome result) {
                   auto const text = folder.read("file");
                   EXPECT_TRUE(text == "brand new" || (!result.done && (text == "old" || text.empty()))) << text;
               });
}

TEST(platform_faults, codes_tell_what_the_host_said) {
    scratch const folder;
    folder.write("file", "old");
    struct {
        int error;
        uint32 code;
    } const table[] = {{EMFILE, 4}, {ENFILE, 4}, {ENOSPC, 112}, {EROFS, 19}, {EACCES, 5}, {ENAMETOOLONG, 206}};
    for (auto const & c : table) {
        injected = c.error;
        calls_left = 1;
        posix::host::fault = [](char const * call) {
            return std::string_view(call) == "open" || std::string_view(call) == "mkdir" ? injected : 0;
        };
        EXPECT_FALSE(write_file(folder.path("file"), CREATE_ALWAYS, "x"));
        EXPECT_EQ(GetLastError(), c.code);
        EXPECT_FALSE(CreateDirectoryW(folder.path("new")));
        EXPECT_EQ(GetLastError(), c.code);
        posix::host::fault = nullptr;
    }
    EXPECT_EQ(folder.read("file"), "old");
}

TEST(platform_faults, attributes_and_information_come_as_a_whole_or_not) {
    each_fault([](scratch const & folder) { folder.write("file", "data"); },
               [](scratch const & folder) {
                   nio::item item(folder.path("file"));
                   nio::attributes set;
                   set.modified.set(126227808000000000, nio::time::format_file_time);
                   set.created = set.modified;
                   set.finder_info.fill('f');
                   set.apply(item, true, false);
                   nio::attributes got(item);
                   return got.finder_info == set.finder_info;
               },
               [](scratch const & folder, outcome result) {
                   EXPECT_EQ(folder.read("file"), "data");
                   EXPECT_TRUE(!result.done || folder.read("._file").size() == 82u);
               });
}

TEST(platform_faults, a_tree_is_removed_or_stays) {
    each_fault(
        [](scratch const & folder) {
            fs::create_directories(folder.host("tree/sub"));
            folder.write("tree/sub/file", "x");
            folder.write("kept", "kept");
            fs::create_symlink("../kept", folder.host("tree/link"));
        },
        [](scratch const & folder) {
            nio::directory(folder.path("tree")).unlink_with_children(true);
            return !nio::exists(folder.path("tree"));
        },
        [](scratch const & folder, outcome result) {
            EXPECT_EQ(folder.read("kept"), "kept");
            EXPECT_EQ(folder.exists("tree"), !result.done);
        });
}

} // namespace
