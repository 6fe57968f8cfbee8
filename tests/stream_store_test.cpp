// The store of named streams among several users: who reads and writes what, what is planted, what is swept.

#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/platform/directories.h"
#include "tests/support/handles.h"
#include "tests/support/ntfs_folder.h"
#include "tests/support/watched_calls.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>

namespace {

using namespace platform;
namespace fs = std::filesystem;

constexpr uid_t anna = 4711;
constexpr uid_t otto = 4712;

/// Does `work` as an ordinary user in a process of its own, and returns what it returns; -1 if it does not return, 32 s
/// being more than enough. Only root can act as somebody else.
template <typename Work>
int as_user(uid_t user, Work work) {
    pid_t const child = fork();
    if (child == 0) {
        alarm(32);
        bool const other = user != geteuid();
        if (other
            && (setgroups(0, nullptr) != 0 || setresgid(user, user, user) != 0 || setresuid(user, user, user) != 0))
            _exit(255);
        _exit(work());
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int get_as(uid_t user, wide_string const & path, std::string const & expected) {
    return as_user(user, [&] { return get(path) == expected ? 0 : 1; });
}

int put_as(uid_t user, wide_string const & path, std::string const & bytes) {
    return as_user(user, [&] { return int(put(path, bytes)); });
}

class stream_store_test : public testing::Test {
protected:
    void SetUp() override {
        if (!volume_.attached())
            GTEST_SKIP() << volume_.limit;
    }

    fs::path store() const { return fs::path(volume_.folder()) / ".socle_streams"; }
    std::size_t folders() const { return volume_.entries(".socle_streams"); }
    void attach() const { EXPECT_EQ(attach(volume_.folder()), 0u); }
    static uint32 attach(std::string const & folder) {
        detach_volume('N');
        return attach_volume('N', folder, "NTFS");
    }

    /// By what a file claims its streams: the name of the attribute, and its value.
    std::pair<std::string, std::string> claim(std::string const & name) const {
        char text[1000] = {};
        ssize_t const size = listxattr(volume_.host(name).c_str(), text, sizeof text);
        for (char const * at = text; at < text + size; at += std::strlen(at) + 1) {
            char value[200];
            ssize_t const got = getxattr(volume_.host(name).c_str(), at, value, sizeof value);
            if (std::string_view(at).starts_with("user.socle.streams.") && got > 0)
                return {at, std::string(value, static_cast<std::size_t>(got))};
        }
        return {};
    }
    void set(std::string const & name, std::pair<std::string, std::string> const & claim) const {
        EXPECT_EQ(
            setxattr(volume_.host(name).c_str(), claim.first.c_str(), claim.second.data(), claim.second.size(), 0), 0);
    }
    fs::path folder_of(std::string const & name) const { return store() / claim(name).second.substr(0, 32); }
    void copy(std::string const & from, std::string const & to) const {
        EXPECT_EQ(std::system(("cp -a '" + volume_.host(from).string() + "' '" + to + "'").c_str()), 0);
    }

    ntfs_folder volume_;
};

TEST_F(stream_store_test, a_sweep_removes_only_what_no_file_claims) {
    EXPECT_EQ(sweep_volume('N'), 0u);
    EXPECT_EQ(sweep_volume('X'), ERROR_PATH_NOT_FOUND);
    fs::create_directories(volume_.host("deep/er"));
    for (char const * const name : {"kept", "gone", "copied", "deep/er/below"}) {
        volume_.write(name, "data");
        EXPECT_EQ(put(u"N:\\" + wide_string(name, name + std::strlen(name)) + u":a", name), 0u);
    }
    EXPECT_EQ(put(u"N:\\deep:a", "of a folder"), 0u);
    copy("copied", volume_.host("copy"));
    fs::remove(volume_.host("copied"));
    fs::remove(volume_.host("gone"));
    fs::rename(volume_.host("kept"), volume_.host("deep/moved"));
    EXPECT_EQ(folders(), 5u);
    EXPECT_EQ(sweep_volume('N'), 0u);
    EXPECT_EQ(folders(), 4u);
    EXPECT_EQ(get(u"N:\\deep\\moved:a") + get(u"N:\\copy:a") + get(u"N:\\deep\\er\\below:a") + get(u"N:\\deep:a"),
              "keptcopieddeep/er/belowof a folder");
    // What cannot be looked at may claim anything.
    fs::remove(volume_.host("copy"));
    watched_calls const refused("listxattr", EIO);
    EXPECT_EQ(sweep_volume('N'), ERROR_IO_DEVICE);
    EXPECT_EQ(folders(), 4u);
}

TEST_F(stream_store_test, is_looked_for_upwards) {
    fs::create_directories(volume_.host("sub/deep"));
    volume_.write("sub/deep/f", "data");
    EXPECT_EQ(put(u"N:\\sub\\deep\\f:a", "found"), 0u);
    copy("sub", volume_.host("../copied sub"));
    EXPECT_EQ(attach(volume_.host("sub")), 0u);
    EXPECT_EQ(get(u"N:\\deep\\f:a"), "found");
    EXPECT_EQ(put(u"N:\\deep\\f:b", "too"), 0u);
    EXPECT_EQ(put(u"N:\\deep:a", "in a store of the sub-folder"), 0u);
    attach();
    EXPECT_EQ(get(u"N:\\sub\\deep\\f:b") + get(u"N:\\sub\\deep:a"), "tooin a store of the sub-folder");
    // Out of the volume, it still says that it has streams.
    EXPECT_EQ(attach(volume_.host("../copied sub")), 0u);
    EXPECT_EQ(get(u"N:\\deep\\f:a"), std::to_string(ERROR_FILE_CORRUPT));
    EXPECT_FALSE(nothing_is_there(GetFileAttributesW(u"N:\\deep\\f:a") == INVALID_FILE_ATTRIBUTES ? last_error() : 2));
    nio::file file(u"N:\\deep\\f", 0);
    EXPECT_THROW(file.open_rsrc(), nio::filesystem_exception);
    EXPECT_EQ(last_error(), ERROR_FILE_CORRUPT);
    EXPECT_EQ(put(u"N:\\deep\\f:c", "new"), 0u);
    EXPECT_EQ(get(u"N:\\deep\\f:c") + get(u"N:\\deep\\f:a"), "new2");
    fs::remove_all(volume_.host("../copied sub"));
    attach();
}

TEST_F(stream_store_test, stands_what_is_done_to_a_whole_volume) {
    volume_.write("f", "data");
    EXPECT_EQ(put(u"N:\\f:a", "kept"), 0u);
    for (mode_t const mode : {0755u, 0777u, 0700u}) {
        EXPECT_EQ(chmod(store().c_str(), mode), 0);
        attach();
        EXPECT_EQ(get(u"N:\\f:a"), "kept");
        EXPECT_EQ(fs::status(store()).permissions(), fs::perms(01733));
    }
    // A medium that has turned read-only.
    chmod(store().c_str(), 0755);
    chmod(volume_.host("f").c_str(), 0600);
    watched_calls const refused("chmod chown mkdir setxattr removexattr rename unlink", EROFS);
    attach();
    EXPECT_EQ(get(u"N:\\f:a"), "kept");
    EXPECT_EQ(put(u"N:\\g:a", "no"), ERROR_WRITE_PROTECT);
}

TEST_F(stream_store_test, stays_with_the_folder_that_was_attached) {
    EXPECT_FALSE(RemoveDirectoryW(u"N:\\"));
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    volume_.write("f", "data");
    EXPECT_EQ(put(u"N:\\f:a", "kept"), 0u);
    std::string const folder = volume_.folder(), away = folder + ".away";
    for (bool const link : {false, true}) {
        fs::rename(folder, away);
        EXPECT_EQ(link ? symlink(away.c_str(), folder.c_str()) : mkdir(folder.c_str(), 0700), 0);
        for (wide_string const path : {u"N:\\f", u"N:\\f:a", u"N:\\:a"})
            EXPECT_EQ(put(path, "no"), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(GetFileAttributesW(u"N:\\"), INVALID_FILE_ATTRIBUTES);
        WIN32_FIND_DATAW found;
        EXPECT_EQ(FindFirstFileW(u"N:\\*", found), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
        if (!link) {
            volume_.write("f", "other");
            EXPECT_EQ(put(volume_.path("f") + u":a", "no"), ERROR_FILE_CORRUPT);
        }
        EXPECT_EQ(volume_.exists(".socle_streams"), link);
        fs::remove_all(folder);
        fs::rename(away, folder);
        EXPECT_EQ(folders(), 1u);
        EXPECT_EQ(get(u"N:\\f:a"), "kept");
    }
}

TEST_F(stream_store_test, takes_a_thousand_streams_and_long_names) {
    nio::file file(u"N:\\f", 4);
    file.close();
    wide_string const longest(255, u'\x4e00');
    EXPECT_EQ(put(u"N:\\f:" + longest, "x"), 0u);
    for (int i = 0; i < 1000; ++i) {
        std::string const digits = std::to_string(i);
        EXPECT_EQ(put(u"N:\\f:" + wide_string(digits.begin(), digits.end()), "y"), 0u);
    }
    std::string bytes(100'000, '\0');
    file.open_ntfs();
    EXPECT_EQ(file.read_ntfs(bytes.data(), 100'000), 1001 * (20 + 7 * 2 + 1) + 2 * (255 + 10 + 90 * 2 + 900 * 3));
    file.close_ntfs();
    EXPECT_EQ(get(u"N:\\f:" + longest), "x");
    file.unlink(true);
    EXPECT_EQ(folders(), 0u);
}

TEST_F(stream_store_test, no_file_leaves_while_a_stream_is_written) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    volume_.write("f", "data");
    fs::create_directory(volume_.host("m"));
    ASSERT_EQ(attach_volume('M', volume_.host("m"), "NTFS"), 0u);
    EXPECT_EQ(put(u"N:\\f:a", "a") + put(u"N:\\f:b", "b"), 0u);
    int const writer = CreateFileW(u"N:\\f:b", GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, 0);
    EXPECT_FALSE(MoveFileW(u"N:\\f", u"M:\\f"));
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(get(u"N:\\f:a") + get(u"M:\\f"), "a2");
    CloseHandle(writer);
    // What a move that was killed has left goes with the next one to the same place.
    static int calls_left;
    auto const killed_move = [&] {
        posix::host::fault = [](char const *) { return --calls_left == 0 ? raise(SIGKILL) : 0; };
        return MoveFileW(u"N:\\f", u"M:\\f") ? 0 : 1;
    };
    for (int n = 1; !volume_.exists("m/f"); n += 3) {
        calls_left = n;
        EXPECT_EQ(as_user(geteuid(), killed_move), -1);
    }
    fs::remove(volume_.host("m/f"));
    EXPECT_TRUE(MoveFileW(u"N:\\f", u"M:\\f"));
    EXPECT_EQ(get(u"M:\\f:b"), "b");
    for (fs::path const & left : fs::directory_iterator(volume_.host("m")))
        EXPECT_TRUE(left.filename() == "f" || left.filename() == ".socle_streams") << left;
    detach_volume('M');
}

/// With two users: anna has the file "f", and otto is anybody else.
class users_test : public stream_store_test {
protected:
    void SetUp() override {
        stream_store_test::SetUp();
        if (geteuid() != 0)
            GTEST_SKIP() << "only root can act as two users";
        if (auto const limit = support::limit_of_processes(); !limit.empty())
            GTEST_SKIP() << limit;
        fs::permissions(volume_.folder(), fs::perms(01777));
        give("f", anna, 0644);
        EXPECT_EQ(put(u"N:\\f:a", ""), 0u);
        EXPECT_TRUE(DeleteFileW(u"N:\\f"));
        give("f", anna, 0644);
    }

    /// Makes the file, if it is missing.
    void give(std::string const & name, uid_t user, mode_t mode) const {
        if (!volume_.exists(name))
            volume_.write(name, "data");
        EXPECT_EQ(chown(volume_.host(name).c_str(), user, user), 0);
        EXPECT_EQ(chmod(volume_.host(name).c_str(), mode), 0);
    }
    /// Whether otto can open a path of the host.
    static bool otto_opens(fs::path const & path, int flags) {
        return as_user(otto, [&] { return open(path.c_str(), flags) >= 0 ? 1 : 0; }) == 1;
    }
};

TEST_F(users_test, streams_let_in_whom_their_file_lets_in) {
    for (uid_t const maker : {uid_t(0), anna}) {
        fs::remove(volume_.host("f"));
        give("f", anna, 0644);
        EXPECT_EQ(put_as(maker, u"N:\\f:a", "mine"), 0);
        for (mode_t const mode : {0644u, 0600u, 0666u, 0640u, 0604u, 0646u, 0600u}) {
            give("f", anna, mode);
            EXPECT_EQ(get_as(maker, u"N:\\f:a", "mine"), 0);
            bool const reads = (mode & 04) != 0;
            bool const writes = (mode & 02) != 0;
            SCOPED_TRACE(mode);
            EXPECT_EQ(otto_opens(folder_of("f") / "a", O_RDONLY), reads);
            EXPECT_EQ(otto_opens(folder_of("f") / "a", O_WRONLY), writes);
            EXPECT_EQ(otto_opens(store(), O_RDONLY), false);
            EXPECT_EQ(get_as(otto, u"N:\\f:a", reads ? "mine" : "5"), 0);
            EXPECT_EQ(put_as(otto, u"N:\\f:b", "his"), writes ? 0 : 5);
            EXPECT_EQ(put_as(otto, u"N:\\f:a", "mine"), writes ? 0 : 5);
            EXPECT_EQ(get_as(anna, u"N:\\f:a", "mine"), 0);
        }
    }
}

TEST_F(users_test, who_may_write_the_file_takes_its_streams_over) {
    EXPECT_EQ(put_as(anna, u"N:\\f:a", "hers") + put_as(anna, u"N:\\f:b", "kept"), 0);
    fs::path const first = folder_of("f");
    EXPECT_EQ(put_as(otto, u"N:\\f:a", "his"), 5);
    give("f", anna, 0666);
    int const writer = CreateFileW(u"N:\\f:b", GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, 0);
    fs::permissions(first, fs::perms(0755)); // as if nobody of hers had looked since
    EXPECT_EQ(put_as(otto, u"N:\\f:a", "his"), ERROR_SHARING_VIOLATION);
    CloseHandle(writer);
    EXPECT_EQ(put_as(otto, u"N:\\f:a", "his"), 0);
    EXPECT_NE(folder_of("f"), first);
    // They stay reachable when only anna may have them, and are hers as soon as she looks.
    give("f", anna, 0600);
    EXPECT_EQ(get_as(anna, u"N:\\f:a", "his") + get_as(anna, u"N:\\f:b", "kept"), 0);
    EXPECT_FALSE(otto_opens(folder_of("f") / "a", O_RDONLY));
    EXPECT_EQ(sweep_volume('N'), 0u);
    EXPECT_EQ(folders(), 1u);
    // Another owner of the file is another owner of them.
    give("f", otto, 0600);
    EXPECT_EQ(get(u"N:\\f:b"), "kept");
    EXPECT_EQ(get_as(otto, u"N:\\f:b", "kept") + get_as(anna, u"N:\\f:b", "5"), 0);
}

TEST_F(users_test, a_kill_leaves_a_read_only_file_read_only) {
    static int calls_left;
    for (char const * const name : {"N:\\r", "N:\\folder"}) {
        wide_string const path(name, name + std::strlen(name));
        fs::create_directory(volume_.host("folder"));
        give("r", anna, 0444);
        give("folder", anna, 0555);
        bool through = false;
        for (int n = 1; !through; ++n) {
            calls_left = n;
            through =
                as_user(anna,
                        [&] {
                            posix::host::fault = [](char const *) { return --calls_left == 0 ? raise(SIGKILL) : 0; };
                            bool const set = SetFileAttributesW(path, calls_left % 2 == 0 ? 1 : 3);
                            return set && calls_left > 0 ? 0 : 1;
                        })
                == 0;
            EXPECT_EQ(as_user(anna, [&] { return int(GetFileAttributesW(path) & FILE_ATTRIBUTE_READONLY); }), 1) << n;
            EXPECT_EQ(fs::status(volume_.host(name + 3)).permissions() & fs::perms::owner_write, fs::perms::none) << n;
        }
    }
}

TEST_F(users_test, an_access_list_admits_nobody_to_the_streams) {
    give("f", anna, 0664);
    EXPECT_EQ(put_as(anna, u"N:\\f:a", "hers"), 0);
    if (std::system(("setfacl -m u:4712:rw,o::- '" + volume_.host("f").string() + "' 2>/dev/null").c_str()) != 0)
        GTEST_SKIP() << "no setfacl, or no access lists";
    EXPECT_EQ(get_as(anna, u"N:\\f:a", "hers"), 0);
    struct stat status {};
    EXPECT_EQ(stat((folder_of("f") / "a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
}

TEST_F(users_test, no_planted_link_is_followed) {
    struct {
        char const * what;
        std::string command; // in the folder of otto's streams, which is his
    } const table[] = {
        {"link", "ln -sf ../../secret a"},
        {"hard link", "ln -f ../../secret a"},
        {"file of another", "rm a; echo planted >a; chown 4713 a; chmod 600 a"},
        {"pipe", "rm a; mkfifo a"},
        {"folder", "rm a; mkdir a"},
        {"link for the folder", "cd ..; mv $OLDPWD ../aside; ln -s ../aside $OLDPWD"},
        {"other folder", "cd ..; mv $OLDPWD ../aside; cp -a ../aside $OLDPWD; setfattr -x user.socle.streams $OLDPWD"},
        {"folder of another", "chown 4713 ."},
        {"file for the folder", "cd ..; rm -r $OLDPWD; touch $OLDPWD"},
    };
    for (auto const & row : table) {
        SCOPED_TRACE(row.what);
        volume_.write("secret", "secret");
        fs::permissions(volume_.host("secret"), fs::perms(0600));
        fs::remove(volume_.host("f"));
        give("f", otto, 0666);
        EXPECT_EQ(put_as(otto, u"N:\\f:a", "his"), 0);
        EXPECT_EQ(std::system(("cd '" + folder_of("f").string() + "' && OLDPWD=$PWD && " + row.command).c_str()), 0);
        for (uid_t const user : {uid_t(0), otto, anna}) {
            EXPECT_EQ(get_as(user, u"N:\\f:a", "5"), 0) << user;
            EXPECT_EQ(put_as(user, u"N:\\f:a", "overwritten"), 5) << user;
        }
        EXPECT_EQ(volume_.read("secret"), "secret");
        EXPECT_FALSE(otto_opens(volume_.host("secret"), O_RDONLY));
        EXPECT_TRUE(DeleteFileW(u"N:\\f"));
        EXPECT_EQ(volume_.read("secret"), "secret");
        fs::remove_all(volume_.host("aside"));
        fs::remove(volume_.host("secret"));
        fs::remove_all(store());
    }
}

TEST_F(users_test, a_planted_store_is_none) {
    fs::remove_all(store());
    char const * const table[] = {
        "ln -s . .socle_streams", "touch .socle_streams", "mkfifo .socle_streams",
        "mkdir .socle_streams && touch .socle_streams/own",
        "mkdir -m 1733 .socle_streams && mount -t tmpfs tmpfs .socle_streams || touch .socle_streams"};
    for (char const * const command : table) {
        std::string const within = "cd '" + volume_.folder() + "' && ";
        EXPECT_EQ(std::system((within + command).c_str()), 0);
        EXPECT_EQ(put(u"N:\\f:a", "no"), 5u) << command;
        EXPECT_EQ(attach(volume_.folder()), 5u) << command;
        EXPECT_EQ(std::system((within + "{ umount .socle_streams 2>/dev/null; rm -r .socle_streams; }").c_str()), 0);
        attach();
    }
    // Nobody but root, who takes it over, is served by what another user has made.
    EXPECT_EQ(put_as(otto, u"N:\\f:a", "no"), 5);
    give("g", otto, 0644);
    EXPECT_EQ(put_as(otto, u"N:\\g:a", "his"), 0);
    EXPECT_EQ(put_as(anna, u"N:\\f:a", "no"), 5);
    EXPECT_EQ(get(u"N:\\g:a"), "his");
    EXPECT_EQ(put_as(anna, u"N:\\f:a", "yes"), 0);
}

TEST_F(users_test, a_planted_claim_leads_to_nothing) {
    EXPECT_EQ(put_as(anna, u"N:\\f:a", "hers"), 0);
    auto const hers = claim("f");
    give("f", anna, 0600);
    EXPECT_EQ(get_as(anna, u"N:\\f:a", "hers"), 0);
    give("g", otto, 0666);
    EXPECT_EQ(put_as(otto, u"N:\\g:own", "own"), 0);
    auto const own = claim("g");
    // Her folder under his identity: two files that claim one id.
    set("g", {own.first, hers.second});
    EXPECT_EQ(get(u"N:\\g:a") + std::to_string(put(u"N:\\g:a", "x")), "55");
    EXPECT_EQ(get_as(otto, u"N:\\g:a", "5"), 0);
    EXPECT_TRUE(DeleteFileW(u"N:\\g"));
    EXPECT_EQ(get(u"N:\\f:a"), "hers");
    // A copy of her claim, while her file is there and when it is gone.
    give("h", otto, 0666);
    set("h", hers);
    EXPECT_EQ(get(u"N:\\h:a"), "2");
    fs::remove(volume_.host("f"));
    EXPECT_EQ(get(u"N:\\h:a") + std::to_string(put(u"N:\\h:b", "x")), "55");
    // Texts that are no claims at all.
    give("i", otto, 0666);
    for (char const * const text : {"", " ", "../../../../../../../../../../x x 0", "x"}) {
        set("i", {hers.first, text});
        EXPECT_EQ(get(u"N:\\i:a"), "2") << text;
    }
}

} // namespace
