#include "socle/platform/file_times.h"
#include "tests/support/handles.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>

namespace {

using namespace platform;
namespace fs = std::filesystem;

class platform_files : public handles_test {
protected:
    /// The exit status of a process that does this.
    static int in_process(std::function<int()> const & work) {
        pid_t const child = fork();
        if (child == 0)
            _exit(work());
        return exit_status(child);
    }
    static int exit_status(pid_t child) {
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    }
};

// Beside what is so on every system.
TEST_F(platform_files, open_or_say_why_not) {
    scratch_.write("file", "bytes");
    scratch_.write("what?", "bytes");
    fs::create_symlink("file", scratch_.host("link"));
    fs::create_symlink("nothing", scratch_.host("dangling"));
    fs::create_symlink("loop", scratch_.host("loop"));
    std::string const longest(300, 'x'), deep = std::string(5000, 'x').replace(2500, 1, "/");
    expect({
        {"link", 0, 0, 80, 0, 0, 0},
        {"what?", 0, 0, 80, 0, 0, 0},
        {"file/file", 3, 3, 3, 3, 3, 3},
        {"file/", 3, 3, 3, 3, 3, 3},
        {"dangling", 2, 2, 80, 80, 0, 2},
        {"loop", 2, 2, 80, 80, 0, 2},
        {"a\"b", 123, 123, 123, 123, 123, 123},
        {"a\nb", 123, 123, 123, 123, 123, 123},
        {longest, 206, 206, 206, 206, 206, 206},
        {deep, 206, 206, 206, 206, 206, 206},
    });
    EXPECT_FALSE(scratch_.exists("nothing"));
    EXPECT_EQ(scratch_.read("link"), "");
    EXPECT_EQ(code_of(CreateFileW(u"Q:\\x", GENERIC_READ, 3, OPEN_EXISTING, 0)), 3u);
    EXPECT_EQ(code_of(CreateFileW(u"\\\\server\\share", GENERIC_READ, 3, OPEN_EXISTING, 0)), 53u);
    // Whom the host's bits let write, but who is not the owner.
    scratch_.write("locked", "bytes");
    fs::permissions(scratch_.host("locked"), fs::perms::owner_read | fs::perms::group_write);
    EXPECT_EQ(code_of(open_rw("locked")), 5u);
}

TEST_F(platform_files, exclude_other_writers_and_never_a_reader) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    scratch_.write("file", "precious");
    struct {
        char const * what;
        uint32 access, sharing, flags;
        uint32 writer, creator, reader, backup; // what others get
    } const holders[] = {
        {"writer", read_write, FILE_SHARE_READ, 0, 32, 32, 0, 32},
        {"reader", GENERIC_READ, share_all, 0, 0, 0, 0, 0},
        {"backup", GENERIC_READ, FILE_SHARE_READ, FILE_FLAG_BACKUP_SEMANTICS, 32, 32, 0, 0},
        {"times", GENERIC_WRITE, share_all, FILE_FLAG_BACKUP_SEMANTICS, 0, 0, 0, 0},
    };
    for (auto const & holder : holders) {
        SCOPED_TRACE(holder.what);
        scratch_.write("file", "precious");
        int const held = CreateFileW(scratch_.path("file"), holder.access, holder.sharing, OPEN_EXISTING, holder.flags);
        ASSERT_GE(held, 0);
        auto const others = [&] {
            uint32 const backup = code_of(CreateFileW(scratch_.path("file"), GENERIC_READ, FILE_SHARE_READ,
                                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS));
            bool const right = code_of(open_rw("file")) == holder.writer && code_of(open("file")) == holder.reader
                               && backup == holder.backup && code_of(create("file")) == holder.creator;
            return right && (holder.creator == 0 || scratch_.read("file") == "precious") ? 0 : 1;
        };
        EXPECT_EQ(others(), 0);
        scratch_.write("file", "precious");
        EXPECT_EQ(in_process(others), 0);
        EXPECT_TRUE(CloseHandle(held));
        EXPECT_EQ(code_of(open_rw("file")), 0u);
    }
}

TEST_F(platform_files, of_pipes_end_in_codes_and_not_in_signals) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    uint32 done = 0;
    int const reader = dup(ends[0]);
    EXPECT_TRUE(CloseHandle(ends[0]) && CloseHandle(reader));
    EXPECT_FALSE(WriteFile(ends[1], "ab", 2, done));
    EXPECT_EQ(GetLastError(), 232u);
    sigset_t pending;
    sigset_t mask;
    sigpending(&pending);
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_FALSE(sigismember(&pending, SIGPIPE) || sigismember(&mask, SIGPIPE));
    struct sigaction action {};
    sigaction(SIGPIPE, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
    EXPECT_TRUE(CloseHandle(ends[1]));

    // What does not wait by itself is waited for, on both sides.
    ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
    std::string const much(1 << 20, 'x');
    pid_t const writer = fork();
    if (writer == 0)
        _exit(WriteFile(ends[1], much.data(), 1 << 20, done) ? 0 : 1);
    EXPECT_TRUE(CloseHandle(ends[1]));
    std::size_t total = 0;
    std::string block(1 << 20, ' ');
    while (ReadFile(ends[0], block.data(), 1 << 20, done))
        total += done;
    EXPECT_EQ(GetLastError(), 109u);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(total, much.size());
    EXPECT_EQ(exit_status(writer), 0);
    EXPECT_TRUE(CloseHandle(ends[0]));

    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    EXPECT_TRUE(CloseHandle(ends[0]));
    EXPECT_FALSE(WriteFile(ends[1], "ab", 2, done));
    EXPECT_EQ(GetLastError(), 232u);
    EXPECT_TRUE(CloseHandle(ends[1]));
}

TEST_F(platform_files, that_are_no_files_keep_nobody_waiting) {
    ASSERT_EQ(mkfifo(scratch_.host("fifo").c_str(), 0600), 0);
    int const listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    scratch_.host("socket").string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    close(listener);
    int const fifo = open("fifo");
    ASSERT_GE(fifo, 0);
    EXPECT_EQ(fcntl(fifo, F_GETFL) & O_NONBLOCK, 0);
    char byte = 0;
    uint32 done = 0;
    EXPECT_FALSE(ReadFile(fifo, &byte, 1, done));
    EXPECT_EQ(GetLastError(), 109u);
    EXPECT_TRUE(CloseHandle(fifo));
    EXPECT_EQ(code_of(CreateFileW(scratch_.path("fifo"), GENERIC_WRITE, 3, OPEN_EXISTING, 0)), 5u);
    EXPECT_EQ(code_of(open("socket")), 5u);
    EXPECT_EQ(GetFileAttributesW(scratch_.path("fifo")), FILE_ATTRIBUTE_DEVICE);
    EXPECT_EQ(GetFileAttributesW(scratch_.path("socket")), FILE_ATTRIBUTE_DEVICE);
}

TEST_F(platform_files, leave_the_standard_streams_their_numbers) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    scratch_.write("file", "bytes");
    EXPECT_EQ(in_process([&] {
                  for (int i = 0; i < 3; ++i)
                      close(i);
                  if (GetStdHandle(STD_OUTPUT_HANDLE) != INVALID_HANDLE_VALUE || GetLastError() != 6)
                      return 1;
                  return open("file") > 2 && create("new") > 2 && fcntl(0, F_GETFD) < 0 ? 0 : 2;
              }),
              0);
    int const out = GetStdHandle(STD_OUTPUT_HANDLE);
    EXPECT_GT(out, 2);
    EXPECT_NE(fcntl(out, F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_TRUE(CloseHandle(out));
    int const file = create("file");
    EXPECT_NE(fcntl(file, F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_GE(fcntl(1, F_GETFD), 0);
    EXPECT_EQ(GetStdHandle(3), INVALID_HANDLE_VALUE);
}

TEST_F(platform_files, have_attributes) {
    scratch_.write("file", "");
    fs::create_directory(scratch_.host("folder"));
    fs::create_symlink("file", scratch_.host("link"));
    fs::create_symlink("folder", scratch_.host("folder_link"));
    fs::create_symlink("nothing", scratch_.host("dangling"));
    struct {
        std::string name;
        uint32 set, get;
    } const cases[] = {
        {"file", 0, 0x20},      {"folder", 0, 0x10},    {"link", 0, 0x420},     {"folder_link", 0, 0x410},
        {"dangling", 0, 0x420}, {"file", 0x80, 0x80},   {"link", 0, 0x480},     {"file", 0xFFFFFFFF, 0x127},
        {"file", 0x22, 0x22},   {"folder", 0x07, 0x17}, {"folder", 0x80, 0x10}, {"link", 0x21, 0x421},
        {"file", 0, 0x21},      {"folder/", 0, 0x10},
    };
    for (auto const & c : cases) {
        if (c.set != 0)
            EXPECT_TRUE(SetFileAttributesW(scratch_.path(c.name), c.set)) << c.name << GetLastError();
        EXPECT_EQ(GetFileAttributesW(scratch_.path(c.name)), c.get) << c.name;
    }
    for (char const * name : {"file/x", "file/"}) {
        EXPECT_EQ(code(GetFileAttributesW(scratch_.path(name)) != INVALID_FILE_ATTRIBUTES), 3u) << name;
        EXPECT_EQ(code(SetFileAttributesW(scratch_.path(name), 1)), 3u) << name;
    }
    EXPECT_FALSE(SetFileAttributesW(scratch_.path("dangling"), 1));
}

TEST_F(platform_files, have_named_streams_on_ntfs) {
    fs::create_directory(scratch_.host("vol"));
    ASSERT_EQ(attach_volume('N', scratch_.host("vol"), "NTFS"), 0u);
    auto const open_stream = [](wide_string const & path, uint32 disposition) {
        return CreateFileW(path, read_write, FILE_SHARE_READ, disposition, 0);
    };
    EXPECT_EQ(code_of(open_stream(u"N:\\f:note", OPEN_EXISTING)), 2u);
    EXPECT_EQ(code_of(open_stream(u"N:\\no\\f:note", CREATE_NEW)), 3u);
    EXPECT_EQ(code_of(open_stream(u"N:\\what?:note", CREATE_NEW)), 123u);
    int const stream = open_stream(u"N:\\f:no?te", CREATE_NEW);
    ASSERT_GE(stream, 0);
    uint32 done = 0;
    EXPECT_TRUE(WriteFile(stream, "words", 5, done));
    EXPECT_EQ(code_of(open_stream(scratch_.path("vol") + u"/f:no?te:$DATA", OPEN_EXISTING)), 32u);
    EXPECT_TRUE(CloseHandle(stream));
    EXPECT_EQ(code_of(open_stream(u"N:\\f:no?te", CREATE_NEW)), 80u);
    EXPECT_EQ(GetFileAttributesW(u"N:\\f:no?te"), 0x20u);
    EXPECT_EQ(GetFileAttributesW(u"N:\\f:none"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(scratch_.read("vol/f"), "");
    EXPECT_TRUE(SetFileAttributesW(u"N:\\f", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(code_of(open_stream(u"N:\\f:no?te", CREATE_ALWAYS)), 5u);
    EXPECT_EQ(get(u"N:\\f:no?te"), "words");
}

} // namespace
