// Our own store of named streams, when the process ends before any one of its calls to the host, or the call fails.

#include "platform/posix/host_calls.h"
#include "platform/posix/named_streams.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sys/wait.h>

namespace {

using namespace platform::posix;
namespace fs = std::filesystem;
using names = std::vector<wide_string>;

/// The call to the host that does not come about, counted from 1, and what happens instead: the error, or the end of
/// the process for 0.
int calls_left = 0;
int error_instead = 0;
constexpr int ended = 77;

int count_call(char const *) {
    if (calls_left == 0 || --calls_left > 0) {
        return 0;
    }
    if (error_instead == 0) {
        _exit(ended);
    }
    return error_instead;
}

uint32 attach(fs::path const & volume, std::unique_ptr<named_streams> & streams) {
    return make_named_streams(volume, streams);
}

std::unique_ptr<named_streams> attach(fs::path const & volume) {
    std::unique_ptr<named_streams> streams;
    EXPECT_EQ(attach(volume, streams), 0u);
    return streams;
}

void write(fs::path const & file, std::string const & bytes) { std::ofstream(file) << bytes; }

uint32 write_stream(fs::path const & file, wide_string const & name, std::string const & bytes) {
    std::unique_ptr<named_streams> streams;
    narrow_string host;
    uint32 code = attach(file.parent_path(), streams);
    code = code != 0 ? code : streams->locate(file, name, true, host);
    if (code == 0) {
        write(host, bytes);
    }
    return code;
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

/// The parameter is the error with which calls fail, 0 for the end of the process.
class stream_faults : public testing::TestWithParam<int> {
protected:
    stream_faults() {
        char pattern[] = "/var/tmp/socle_faults_XXXXXX";
        folder_ = mkdtemp(pattern);
        error_instead = GetParam();
        host::fault = count_call;
    }
    ~stream_faults() override {
        host::fault = nullptr;
        fs::remove_all(folder_);
    }

    /// Runs `change` with its first call to the host failing, then its second and so on, each on a volume of its own
    /// that `prepare` has set up; then `check` on what is left, with the code that `change` gave, or 5 where the
    /// process ended. The last run comes through.
    void fail_everywhere(std::function<void(fs::path const &)> const & prepare,
                         std::function<uint32(fs::path const &)> const & change,
                         std::function<void(fs::path const &, uint32 code)> const & check) {
        for (int n = 1;; ++n) {
            ASSERT_LT(n, 1000);
            fs::path const volume = folder_ / std::to_string(n);
            fs::create_directory(volume);
            prepare(volume);
            SCOPED_TRACE(n);
            bool through = false;
            check(volume, run(change, volume, n, through));
            if (through) {
                EXPECT_GT(n, 3) << "hardly a call was counted";
                return;
            }
        }
    }

    fs::path folder_;

private:
    static uint32 run(std::function<uint32(fs::path const &)> const & change, fs::path const & volume, int call,
                      bool & through) {
        calls_left = call;
        if (error_instead != 0) {
            uint32 const code = change(volume);
            through = calls_left > 0;
            calls_left = 0;
            return code;
        }
        pid_t const child = fork();
        if (child == 0) {
            change(volume);
            _exit(0);
        }
        calls_left = 0;
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        through = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        EXPECT_TRUE(through || (WIFEXITED(status) && WEXITSTATUS(status) == ended));
        return through ? 0 : 5;
    }
};

INSTANTIATE_TEST_SUITE_P(errors, stream_faults, testing::Values(0, EIO));

TEST_P(stream_faults, creating) {
    wide_string const stream(60, u'N');
    fail_everywhere(
        [](fs::path const & volume) {
            write(volume / "file", "data");
            EXPECT_EQ(write_stream(volume / "file", u"before", "old"), 0u);
            write(volume / "new file", "data");
        },
        [&](fs::path const & volume) {
            uint32 const code = write_stream(volume / "file", stream, "new");
            return code != 0 ? code : write_stream(volume / "new file", stream, "new");
        },
        [&](fs::path const & volume, uint32 code) {
            for (char const * name : {"file", "new file"}) {
                std::string const found = read_stream(volume / name, stream);
                EXPECT_TRUE(found == "new" || (code != 0 && found == "-")) << found;
                EXPECT_EQ(write_stream(volume / name, u"later", "two"), 0u);
                EXPECT_EQ(read_stream(volume / name, u"later"), "two");
            }
            EXPECT_EQ(read_stream(volume / "file", u"before"), "old");
        });
}

TEST_P(stream_faults, deleting) {
    fail_everywhere(
        [](fs::path const & volume) {
            write(volume / "file", "data");
            write_stream(volume / "file", u"one", "1");
            write_stream(volume / "file", u"two", "2");
        },
        [](fs::path const & volume) {
            std::unique_ptr<named_streams> streams;
            uint32 const code = attach(volume, streams);
            if (code == 0) {
                stream_removal removal(*streams, volume / "file");
                if (host::unlink(volume / "file") == 0) {
                    removal.name_removed();
                }
            }
            return code;
        },
        [](fs::path const & volume, uint32) {
            if (fs::exists(volume / "file")) {
                EXPECT_EQ(list(volume / "file"), (names{u"one", u"two"}));
            }
            fs::remove(volume / "file");
            write(volume / "file", "new");
            EXPECT_EQ(list(volume / "file"), names{});
        });
}

TEST_P(stream_faults, attaching_a_copied_volume) {
    fs::path const original = folder_ / "original";
    fs::create_directory(original);
    for (char const * name : {"a", "b", "renamed"}) {
        write(original / name, "data");
        write_stream(original / name, u"s", name);
    }
    fs::rename(original / "renamed", original / "c");
    fail_everywhere(
        [&](fs::path const & volume) {
            std::string const copy = "cp -a '" + original.string() + "/.' '" + volume.string() + "'";
            ASSERT_EQ(std::system(copy.c_str()), 0);
        },
        [](fs::path const & volume) {
            std::unique_ptr<named_streams> streams;
            return attach(volume, streams);
        },
        [](fs::path const & volume, uint32) {
            EXPECT_EQ(read_stream(volume / "a", u"s"), "a");
            EXPECT_EQ(read_stream(volume / "b", u"s"), "b");
            EXPECT_EQ(read_stream(volume / "c", u"s"), "renamed");
        });
}

TEST_P(stream_faults, copying) {
    fail_everywhere(
        [](fs::path const & volume) {
            fs::create_directory(volume / "to");
            write(volume / "file", "data");
            write_stream(volume / "file", u"one", "1");
            write_stream(volume / "file", u"two", "22");
            write(volume / "to/copy", "data");
        },
        [](fs::path const & volume) {
            std::unique_ptr<named_streams> from;
            std::unique_ptr<named_streams> to;
            uint32 code = attach(volume, from);
            code = code != 0 ? code : attach(volume / "to", to);
            return code != 0 ? code : copy_streams(*from, volume / "file", *to, volume / "to/copy");
        },
        [](fs::path const & volume, uint32 code) {
            if (code == 0) {
                EXPECT_EQ(read_stream(volume / "to/copy", u"one"), "1");
                EXPECT_EQ(read_stream(volume / "to/copy", u"two"), "22");
            }
            EXPECT_EQ(read_stream(volume / "file", u"two"), "22");
        });
}

} // namespace
