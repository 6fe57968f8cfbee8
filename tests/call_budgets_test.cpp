// The calls to the host that each operation makes: one that is added, dropped or moved shows.

#include "socle/io/directory.h"
#include "socle/io/file.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/file.h"
#include "socle/nio/fork_names.h"
#include "socle/nio/move.h"
#include "tests/support/scratch.h"
#include "tests/support/watched_calls.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

namespace fs = std::filesystem;

/// What operations work on: in a folder "file", of five bytes, the empty folder "sub", and "walked" with two files;
/// "new" is not there.
struct objects {
    explicit objects(wide_string const & where) : in(where + u'\\') {
        file.attributes().created = any::time(1u << 31, any::time::format_mac_seconds);
        wide_set.created.set(1u << 31, nio::time::format_mac_seconds);
    }
    ~objects() {
        for (io::file * each : {&file, &made, &deep})
            each->data_fork().close(true);
    }

    any::path path(char16_t const * name) const { return {in + name, true}; }

    wide_string in;
    io::file file{path(u"file")}, made{path(u"new")}, deep{path(u"new\\er\\file")};
    io::directory folder{path(u"new")}, sub{path(u"sub")}, walked{path(u"walked")};
    nio::file wide{in + u"file", nio::file::mode_closed}, wide_made{in + u"new", nio::file::mode_closed};
    nio::directory wide_deep{in + u"new\\er"}, wide_sub{in + u"sub"}, wide_walked{in + u"walked"};
    nio::attributes wide_set;
    io::item::summary sum;
    wide_string target = in + u"sub\\new";
    char bytes[5] = "four";
};

void walk(auto const & folder, auto each) {
    for (auto entry = folder.begin(); entry != folder.end(); ++entry)
        each(entry);
}

struct operation {
    char const * name;
    char const * calls; // with no volume attached
    int more;           // with volumes attached: a folder is opened, asked where it lies, and closed
    void (*run)(objects & at);
};

constexpr int no_sidecar = io::attributes::no_sidecar, with_sidecar = io::attributes::with_sidecar;

operation const operations[] = {
    {"io::item::exists", "statx", 3, [](objects & at) { at.file.item::exists(); }},
    {"io::item::directory", "statx", 3, [](objects & at) { at.file.directory(); }},
    {"io::item::size", "statx open fstat fstat close", 3, [](objects & at) { at.file.size(); }},
    {"io::item::make_unique", "statx statx stat", 2, [](objects & at) { at.file.make_unique(2); }},
    {"io::item::load_attributes", "statx listxattr", 3, [](objects & at) { at.file.load_attributes(no_sidecar); }},
    {"io::item::load_attributes, with sidecar", "statx listxattr statx stat statx stat statx stat", 0,
     [](objects & at) { at.file.load_attributes(with_sidecar); }},
    {"io::item::apply_attributes", "statx open fstat fstat getxattr setxattr close stat getxattr", 3,
     [](objects & at) { at.file.apply_attributes(no_sidecar); }},
    {"io::item::apply_attributes, with sidecar",
     "statx open fstat fstat getxattr setxattr close stat getxattr statx stat open open flock fstat write close", 2,
     [](objects & at) { at.file.apply_attributes(with_sidecar); }},
    {"io::item::rename", "rename_no_replace", 3, [](objects & at) { at.file.rename(any::string(u"new")); }},
    {"io::item::move", "rename_no_replace", 6, [](objects & at) { at.file.move(at.sub); }},
    {"io::item::scan", "open getdents getdents open fstat fstat close open fstat fstat close close", 1,
     [](objects & at) { at.walked.scan(at.sum); }},
    {"io::item::create_temp", "open flock close statx lstat unlink", 9,
     [](objects & at) { at.made.create_temp(at.sub); }},
    {"io::item::create_with_parents", "statx stat statx statx stat mkdir statx stat mkdir open flock close", 18,
     [](objects & at) { at.deep.create_with_parents(false); }},
    {"io::file::exists", "statx stat statx stat statx stat", 6, [](objects & at) { at.made.exists(); }},
    {"io::file::create", "open flock close", 3, [](objects & at) { at.made.create(false); }},
    {"io::file::unlink", "lstat unlink", 3, [](objects & at) { at.file.unlink(true); }},
    {"io::fork::open", "open fstat close", 3, [](objects & at) { at.file.data_fork().open(); }},
    {"all of io::fork",
     "open fstat flock read lseek fstat write lseek fstat lseek lseek status_flags lseek ftruncate lseek status_flags "
     "fsync close lstat unlink",
     6,
     [](objects & at) {
         auto & fork = at.file.data_fork();
         fork.open_rw();
         fork.read(at.bytes, 5);
         fork.seek(2);
         fork.write(at.bytes, 2);
         fork.tell();
         fork.size();
         fork.resize(7);
         fork.flush(true);
         fork.close(true);
         fork.unlink(true);
     }},
    {"io::directory::create", "statx stat mkdir", 5, [](objects & at) { at.folder.create(false); }},
    {"io::directory::unlink", "rmdir", 3, [](objects & at) { at.sub.unlink(true); }},
    {"io::directory::unlink_with_children",
     "open getdents getdents lstat unlink lstat unlink lseek getdents getdents close rmdir", 4,
     [](objects & at) { at.walked.unlink_with_children(true); }},
    {"io::directory::iterator", "open getdents getdents close", 1,
     [](objects & at) { walk(at.walked, [](auto & entry) { entry.is_directory(); }); }},
    {"io::directory::iterator::load_attributes",
     "open getdents getdents close open statx listxattr statx listxattr close", 2,
     [](objects & at) { walk(at.walked, [](auto & entry) { entry.load_attributes(no_sidecar); }); }},
    {"the same, with sidecars",
     "open getdents getdents close open statx listxattr statx statx statx statx listxattr statx statx statx close", 2,
     [](objects & at) { walk(at.walked, [](auto & entry) { entry.load_attributes(with_sidecar); }); }},
    {"nio::exists", "statx", 3, [](objects & at) { nio::exists(at.wide.path()); }},
    {"nio::is_directory", "statx", 3, [](objects & at) { nio::is_directory(at.wide.path()); }},
    {"nio::make_unique", "statx statx stat", 2, [](objects & at) { nio::make_unique(at.wide.path(), 2); }},
    {"nio::is_ntfs", "", 3, [](objects & at) { nio::is_ntfs(at.wide.path()); }},
    {"nio::exists_rsrc", "statx stat", 2, [](objects & at) { nio::exists_rsrc(at.wide.path()); }},
    {"nio::move", "statx stat rename_no_replace", 5, [](objects & at) { nio::move(at.wide.path(), at.target, true); }},
    {"nio::unlink", "statx statx stat lstat unlink", 2, [](objects & at) { nio::unlink(at.wide.path(), true); }},
    {"nio::attributes::load", "statx listxattr statx stat", 2, [](objects & at) { at.wide_set.load(at.wide); }},
    {"nio::attributes::apply", "open fstat fstat getxattr setxattr close stat getxattr setxattr", 3,
     [](objects & at) { at.wide_set.apply(at.wide, false, true); }},
    {"nio::attributes::apply, with information",
     "open fstat fstat getxattr setxattr close stat getxattr setxattr statx stat open stat stat open flock fstat fstat "
     "write close",
     0, [](objects & at) { at.wide_set.apply(at.wide, true, true); }},
    {"nio::file::open", "open fstat close", 3, [](objects & at) { at.wide.open(); }},
    {"all of nio::file",
     "open fstat flock read lseek fstat write lseek fstat lseek lseek status_flags lseek ftruncate lseek close", 3,
     [](objects & at) {
         at.wide.open_rw();
         at.wide.read(at.bytes, 5);
         at.wide.seek(2);
         at.wide.write(at.bytes, 2);
         at.wide.tell();
         at.wide.size();
         at.wide.resize(7);
         at.wide.flush();
         at.wide.close();
     }},
    {"nio::file::create", "stat open flock close", 2, [](objects & at) { at.wide_made.create(false); }},
    {"nio::file::create_rsrc", "stat open flock fstat write close", 2,
     [](objects & at) { at.wide.create_rsrc(true, false); }},
    {"nio::file::create_temp", "stat open flock close", 2, [](objects & at) { at.wide.create_temp(at.in + u"sub"); }},
    {"nio::file::unlink", "statx stat lstat unlink", 2, [](objects & at) { at.wide.unlink(true); }},
    {"nio::directory::create", "statx stat stat statx stat statx statx stat mkdir statx stat mkdir", 5,
     [](objects & at) { at.wide_deep.create(); }},
    {"nio::directory::unlink", "rmdir", 3, [](objects & at) { at.wide_sub.unlink(true); }},
    {"nio::directory::unlink_with_children", "open getdents getdents statx lstat unlink statx lstat unlink close rmdir",
     4, [](objects & at) { at.wide_walked.unlink_with_children(true); }},
    {"nio::directory::iterator", "open getdents getdents close", 1,
     [](objects & at) { walk(at.wide_walked, [](auto & entry) { entry.is_directory(); }); }},
    {"nio::directory::iterator::load",
     "open getdents getdents close open statx listxattr statx statx listxattr statx close", 2,
     [](objects & at) { walk(at.wide_walked, [&](auto & entry) { entry.load(at.wide_set); }); }},
};

/// The calls of an operation in a folder `depth` folders down.
std::string calls_of(operation const & row, int depth, bool attached) {
    scratch const here; // on a disk with extended attributes
    std::string folder = "n";
    for (int i = 0; i < depth; ++i)
        folder += "/d";
    for (char const * name : {"/sub", "/walked"})
        fs::create_directories(here.host(folder + name));
    for (char const * name : {"/file", "/walked/1", "/walked/2"})
        here.write(folder + name, "bytes");
    std::string const letters = attached ? "NMO" : "";
    for (char const letter : letters) {
        fs::create_directories(here.host({letter}));
        EXPECT_EQ(platform::attach_volume(letter, here.host({letter}), "FAT32"), 0u);
    }
    std::string calls;
    {
        watched_calls const watched([&](std::string const & call) {
            calls += (calls.empty() ? "" : " ") + call;
            return 0;
        });
        objects at(here.path(folder)); // close what they have open
        row.run(at);
    }
    for (char const letter : letters)
        platform::detach_volume(letter);
    return calls;
}

std::ptrdiff_t count_of(std::string const & calls) {
    return !calls.empty() + std::count(calls.begin(), calls.end(), ' ');
}

TEST(call_budgets, are_kept_at_any_depth_and_with_volumes) {
    for (operation const & row : operations) {
        SCOPED_TRACE(row.name);
        calls_of(row, 2, false); // what is asked once in a process
        EXPECT_EQ(calls_of(row, 2, false), row.calls);
        EXPECT_EQ(calls_of(row, 40, false), row.calls);
        std::string const attached = calls_of(row, 2, true);
        EXPECT_EQ(count_of(attached), count_of(row.calls) + row.more) << attached;
        EXPECT_EQ(calls_of(row, 40, true), attached);
    }
}

} // namespace
