// Trees that are removed and scanned while somebody else changes them.

#include "socle/io/directory.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "tests/support/deep_folders.h"
#include "tests/support/elsewhere.h"
#include "tests/support/ntfs_folder.h"
#include "tests/support/system.h"
#include "tests/support/watched_calls.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

any::path as_path(wide_string const & text) { return any::path(any::string(text), true); }

void empty_with_nio(wide_string const & path) { nio::directory(path).unlink_children(false); }
void empty_with_io(wide_string const & path) { io::directory(as_path(path)).unlink_children(false); }
void scan(wide_string const & path) {
    io::item item(as_path(path));
    io::item::summary sum;
    item.scan(sum);
    EXPECT_LE(sum.bytes, 7u) << "bytes of what lies outside";
}

struct operation {
    char const * name;
    void (*run)(wide_string const & path);
} const operations[] = {{"nio", empty_with_nio}, {"io", empty_with_io}, {"scan", scan}};

constexpr char const * inside[] = {"tree/a/one",      "tree/a/b/two", "tree/a/b/._two",
                                   "tree/a/\xFF\xC0", "tree/c/one",   "tree/file"};
constexpr char const * outside[] = {"outside/one", "outside/._one", "outside/b/two", "outside/file", "outside/a/one"};

void make(scratch const & here) {
    for (char const * name : {"tree/a/b", "aside/it"})
        chmod(here.host(name).c_str(), 0700);
    for (char const * name : {"tree", "outside", "aside"})
        fs::remove_all(here.host(name));
    for (char const * folder : {"tree/a/b", "tree/c", "outside/a", "outside/b", "aside"})
        fs::create_directories(here.host(folder));
    for (char const * file : inside)
        here.write(file, "x");
    for (char const * file : outside)
        here.write(file, "kept bytes");
    fs::create_directory_symlink("../outside", here.host("tree/link"));
}

/// What somebody puts in the place of `name`, which goes aside. Or it goes altogether, or nobody may read it any more.
struct swap {
    char const * name;
    enum { link, folder, file, nothing, shut } put;
} const swaps[] = {{"tree/a", swap::link},      {"tree/a/b", swap::link}, {"tree/c", swap::file},
                   {"tree/file", swap::link},   {"tree", swap::link},     {"tree/link", swap::folder},
                   {"tree/a/b", swap::nothing}, {"tree/a/b", swap::shut}};

void carry_out(scratch const & here, swap const & s) {
    std::error_code ignored;
    if (s.put == swap::shut)
        return fs::permissions(here.host(s.name), fs::perms::none, ignored);
    if (s.put == swap::nothing)
        return static_cast<void>(fs::remove_all(here.host(s.name), ignored));
    fs::rename(here.host(s.name), here.host("aside/it"), ignored);
    if (s.put == swap::link)
        fs::create_directory_symlink(here.host("outside"), here.host(s.name), ignored);
    else if (s.put == swap::folder)
        fs::create_directory(here.host(s.name), ignored);
    else
        here.write(s.name, "y");
}

TEST(held_trees, are_never_left_whatever_is_swapped_at_any_call) {
    elsewhere const here;
    for (operation const & each : operations)
        for (swap const & s : swaps) {
            bool swapped = true;
            for (int n = 1; swapped; ++n) {
                SCOPED_TRACE(std::string(each.name) + ", " + s.name + " at call " + std::to_string(n));
                make(here);
                int calls = 0;
                {
                    watched_calls const watch([&](std::string const &) {
                        if (++calls == n)
                            carry_out(here, s);
                        return 0;
                    });
                    each.run(here.path("tree"));
                }
                swapped = calls >= n;
                for (char const * file : outside)
                    ASSERT_EQ(here.read(file), "kept bytes") << file;
            }
        }
}

// What is mounted in a tree goes, but for the mount point.
TEST(held_trees, go_on_behind_a_mount_point) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may mount";
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    elsewhere const here;
    for (operation const & each : operations) {
        make(here);
        pid_t const child = fork();
        if (child == 0) {
            // What is mounted here is seen by this process alone, and goes with it.
            char const * const mounted = "tree/a/b";
            if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
                || mount("none", here.host(mounted).c_str(), "tmpfs", 0, nullptr) != 0)
                _exit(2);
            here.write("tree/a/b/new", "x");
            each.run(here.path("tree"));
            bool const removes = each.run != scan;
            _exit(here.exists(mounted) && here.exists("tree/a/b/new") != removes && here.exists("tree/c") != removes
                      ? 0
                      : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        if (WEXITSTATUS(status) == 2)
            GTEST_SKIP() << "this machine lets nobody mount";
        EXPECT_EQ(status, 0) << each.name;
        EXPECT_TRUE(here.exists("tree/a/b/two")) << "what lies under the mount";
        for (char const * file : outside)
            EXPECT_EQ(here.read(file), "kept bytes") << file;
    }
}

// The failure is that of the lowest folder, and all above it are put down behind it.
TEST(held_trees, tell_which_folder_could_not_be_removed) {
    elsewhere const here;
    fs::create_directories(here.host("tree/a/b/c/._hidden"));
    try {
        nio::directory(here.path("tree")).unlink_children(true);
        ADD_FAILURE() << "nothing thrown";
    } catch (nio::filesystem_exception const & e) {
        EXPECT_NE(e.message().find("tree\\a\\b\\c"), narrow_string::npos) << e.message();
    }
}

// The folder that a walk holds stays the one whose entries it asks for, wherever their forks are.
TEST(held_trees, tell_the_attributes_of_their_entries) {
    ntfs_folder const here;
    ASSERT_TRUE(here.attached()) << ntfs_folder::limit;
    constexpr uint32 hidden = 2;
    auto const prepare = [&](char const * folder) {
        fs::create_directories(here.host(folder));
        for (char const * file : {"/a", "/b"})
            here.write(std::string(folder) + file, "x");
    };
    auto const swap = [&](std::string const & folder) {
        fs::rename(here.host(folder), here.host(folder + ".away"));
        fs::create_directory_symlink("outside", here.host(folder));
    };
    prepare("outside");
    for (bool const in_stream : {false, true}) {
        char const * const folder = in_stream ? "streams" : "doubles";
        prepare(folder);
        nio::attributes set;
        set.file_attributes = hidden;
        set.finder_info.fill('f');
        for (char16_t const * name : {u"\\a", u"\\b"}) {
            nio::item item(here.path(folder) + name);
            if (in_stream)
                nio::file(item, nio::file::mode_closed).create_rsrc(true, false);
            set.apply(item, true, in_stream);
        }
        auto entry = nio::directory(here.path(folder)).begin();
        for (; entry != nio::directory::iterator(); ++entry) {
            nio::attributes found;
            entry.load(found);
            EXPECT_EQ(found.file_attributes, hidden);
            EXPECT_EQ(found.finder_info, set.finder_info) << folder;
            if (entry->ends_with(u'a'))
                swap(folder);
        }
    }
    prepare("sidecars");
    io::attributes set;
    set.win32 = io::win32::attributes();
    set.win32.value().flags = hidden;
    for (char16_t const * name : {u"\\a", u"\\b"})
        set.apply(as_path(here.path("sidecars") + name), io::attributes::no_sidecar);
    io::directory const walked(as_path(here.path("sidecars")));
    for (auto entry = walked.begin(); entry != walked.end(); ++entry) {
        entry.load_attributes(io::attributes::with_sidecar);
        EXPECT_EQ(entry->attributes().win32.value().flags, hidden);
        if (entry->path().leaf() == u"a")
            swap("sidecars");
    }
}

TEST(held_trees, are_deeper_than_descriptors_and_paths_go) {
    constexpr std::size_t depth = 1200;
    elsewhere const here;
    for (auto const & empty : {empty_with_nio, empty_with_io}) {
        make_chain(here, wide_string(40, u'd'), depth);
        few_descriptors const limit(64);
        io::item::summary sum;
        io::item(as_path(here.path(""))).scan(sum);
        empty(here.path(""));
        EXPECT_EQ(sum.directories, depth + 1);
        EXPECT_TRUE(fs::is_empty(here.folder()));
    }
}

} // namespace
