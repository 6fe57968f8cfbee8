// Our own store of named streams, when the process ends between any two of its changes of the host. Linked with --wrap,
// so that each call below that the library makes is counted first.

#include "platform/posix/named_streams.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// The change before which the process ends; none for 0.
int last_change = 0;
constexpr int ended = 77;

void count_change() {
    if (last_change > 0 && --last_change == 0) {
        _exit(ended);
    }
}

} // namespace

// NOLINTBEGIN: the linker's names.
extern "C" {
int __real_mkdir(char const *, mode_t);
int __real_chmod(char const *, mode_t);
int __real_setxattr(char const *, char const *, void const *, size_t, int);
int __real_unlinkat(int, char const *, int);
int __real_rmdir(char const *);

int __wrap_mkdir(char const * path, mode_t mode) {
    count_change();
    return __real_mkdir(path, mode);
}
int __wrap_chmod(char const * path, mode_t mode) {
    count_change();
    return __real_chmod(path, mode);
}
int __wrap_setxattr(char const * path, char const * name, void const * value, size_t size, int flags) {
    count_change();
    return __real_setxattr(path, name, value, size, flags);
}
int __wrap_unlinkat(int folder, char const * path, int flags) {
    count_change();
    return __real_unlinkat(folder, path, flags);
}
int __wrap_rmdir(char const * path) {
    count_change();
    return __real_rmdir(path);
}
}
// NOLINTEND

namespace {

using namespace platform::posix;
namespace fs = std::filesystem;
using names = std::vector<wide_string>;

class stream_crash : public testing::Test {
protected:
    stream_crash() {
        char pattern[] = "/var/tmp/socle_crash_XXXXXX";
        folder_ = mkdtemp(pattern);
    }
    ~stream_crash() override { fs::remove_all(folder_); }

    /// Runs `change` in processes that end before their first change of the host, before their second and so on, each
    /// on a volume of its own that `prepare` has set up; then `check` on what is left. Ends with a run that comes
    /// through.
    void end_everywhere(std::function<void(fs::path const &)> const & prepare,
                        std::function<void(fs::path const &)> const & change,
                        std::function<void(fs::path const &)> const & check) {
        for (int n = 1;; ++n) {
            fs::path const volume = folder_ / std::to_string(n);
            fs::create_directory(volume);
            prepare(volume);
            pid_t const child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                last_change = n;
                change(volume);
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFEXITED(status));
            SCOPED_TRACE(n);
            check(volume);
            if (WEXITSTATUS(status) == 0) {
                EXPECT_GT(n, 1) << "no change was counted";
                return;
            }
            ASSERT_EQ(WEXITSTATUS(status), ended);
        }
    }

    fs::path folder_;
};

std::unique_ptr<named_streams> attach(fs::path const & volume) {
    std::unique_ptr<named_streams> streams;
    EXPECT_EQ(make_named_streams(volume, streams), 0u);
    return streams;
}

void write(fs::path const & file, std::string const & bytes) { std::ofstream(file) << bytes; }

void write_stream(fs::path const & file, wide_string const & name, std::string const & bytes) {
    narrow_string host;
    EXPECT_EQ(attach(file.parent_path())->locate(file, name, true, host), 0u);
    write(host, bytes);
}

std::string read_stream(fs::path const & file, wide_string const & name) {
    narrow_string host;
    if (attach(file.parent_path())->locate(file, name, false, host) != 0) {
        return "-";
    }
    std::ifstream in(host);
    return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "-";
}

names list(fs::path const & file) {
    names found;
    EXPECT_EQ(attach(file.parent_path())->list(file, found), 0u);
    return found;
}

TEST_F(stream_crash, creating) {
    wide_string const longest(255, u'N');
    end_everywhere([](fs::path const & volume) { write(volume / "file", "data"); },
                   [&](fs::path const & volume) { write_stream(volume / "file", longest, "new"); },
                   [&](fs::path const & volume) {
                       names const found = list(volume / "file");
                       EXPECT_TRUE(found.empty() || read_stream(volume / "file", longest) == "new");
                       write_stream(volume / "file", u"other", "two");
                       EXPECT_EQ(read_stream(volume / "file", u"other"), "two");
                       EXPECT_EQ(list(volume / "file").size(), found.size() + 1);
                   });
}

TEST_F(stream_crash, deleting) {
    end_everywhere(
        [](fs::path const & volume) {
            write(volume / "file", "data");
            write_stream(volume / "file", u"one", "1");
            write_stream(volume / "file", u"two", "2");
        },
        [](fs::path const & volume) {
            auto const streams = attach(volume);
            stream_removal removal(*streams, volume / "file");
            count_change();
            unlink((volume / "file").c_str());
            removal.name_removed();
        },
        [](fs::path const & volume) {
            if (fs::exists(volume / "file")) {
                EXPECT_EQ(list(volume / "file"), (names{u"one", u"two"}));
            }
            fs::remove(volume / "file");
            write(volume / "file", "new");
            EXPECT_EQ(list(volume / "file"), names{});
        });
}

TEST_F(stream_crash, attaching_a_copied_volume) {
    end_everywhere(
        [&](fs::path const & volume) {
            fs::path const original = folder_ / "original";
            if (!fs::exists(original)) {
                fs::create_directory(original);
                for (char const * name : {"a", "b", "c"}) {
                    write(original / name, "data");
                    write_stream(original / name, u"s", name);
                }
            }
            std::string const copy = "cp -a '" + original.string() + "/.' '" + volume.string() + "'";
            ASSERT_EQ(std::system(copy.c_str()), 0);
        },
        [](fs::path const & volume) { attach(volume); },
        [](fs::path const & volume) {
            for (char const * name : {"a", "b", "c"}) {
                EXPECT_EQ(read_stream(volume / name, u"s"), name);
            }
        });
}

} // namespace
