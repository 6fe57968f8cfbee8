// How many calls to the host an operation may cost.

#include "socle/io/directory.h"
#include "socle/io/file.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/file.h"
#include "socle/nio/move.h"
#include "socle/platform/posix/host/host_calls.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
namespace host = platform::posix::host;

constexpr int entries = 10; // in the folder that is walked

std::string calls;
int count = 0;

int count_call(char const * call) {
    ++count;
    (calls += ' ') += call;
    return 0;
}

any::path as_path(wide_string const & text) { return any::path(any::string(text), true); }

void walk(wide_string const & folder, bool with_attributes) {
    int seen = 0;
    for (auto it = nio::directory(folder + u"\\walked").begin(); it != nio::directory().end(); ++it) {
        nio::attributes found;
        if (with_attributes)
            it.load(found);
        seen += !it.is_directory();
    }
    EXPECT_EQ(seen, entries);
}

constexpr int names_only = -1;

void walk_items(wide_string const & folder, int type) {
    int seen = 0;
    io::directory walked(as_path(folder + u"\\walked"));
    for (auto it = walked.begin(); it != walked.end(); ++it) {
        if (type != names_only)
            it.load_attributes(type);
        seen += !it.is_directory();
    }
    EXPECT_EQ(seen, entries);
}

/// One operation in `folder`, which holds "file", the empty folder "sub", and "walked" with its entries.
struct budget {
    char const * operation;
    int calls; // with no volume attached
    int more;  // with volumes attached: a folder is opened, asked where it lies, and closed
    char const * what_for;
    void (*run)(wide_string const & folder);
};

wide_string file_in(wide_string const & folder) { return folder + u"\\file"; }
any::path item_in(wide_string const & folder) { return as_path(file_in(folder)); }

budget const budgets[] = {
    {"exists", 1, 3, "statx for the kind", [](wide_string const & in) { EXPECT_TRUE(nio::exists(file_in(in))); }},
    {"is_directory", 1, 3, "statx for the kind", [](wide_string const & in) { EXPECT_TRUE(nio::is_directory(in)); }},
    {"io exists", 1, 3, "statx for the kind",
     [](wide_string const & in) { EXPECT_TRUE(io::item(item_in(in)).exists()); }},
    {"io attributes", 2, 3, "statx, and which extended attributes there are",
     [](wide_string const & in) { io::item(item_in(in)).load_attributes(io::attributes::no_sidecar); }},
    {"io attributes of type 1", 8, 3, "the same; the sidecar and its two side forks are looked for",
     [](wide_string const & in) { io::item(item_in(in)).load_attributes(io::attributes::with_sidecar); }},
    {"io apply", 12, 6, "two operations: load; kind; times by open, record of the creation time; bits",
     [](wide_string const & in) {
         io::item item(item_in(in));
         item.load_attributes(io::attributes::no_sidecar);
         item.apply_attributes(io::attributes::no_sidecar);
     }},
    {"io create and close", 3, 3, "open, lock, close",
     [](wide_string const & in) {
         io::file made(as_path(in + u"\\new"));
         made.create(false);
         made.data_fork().close(true);
     }},
    {"io size", 5, 3, "kind; open, kind, size, close", [](wide_string const & in) { io::item(item_in(in)).size(); }},
    {"nio attributes", 4, 3, "statx, extended attributes, the sidecar",
     [](wide_string const & in) {
         nio::item item(file_in(in));
         nio::attributes().load(item);
     }},
    {"nio apply", 24, 3, "load; times; bits; sidecar: where, whether, made and written",
     [](wide_string const & in) {
         nio::item item(file_in(in));
         nio::attributes set;
         set.load(item);
         set.apply(item, true, true);
     }},
    {"open and close", 3, 3, "open, fstat for the kind, close",
     [](wide_string const & in) { nio::file(file_in(in), nio::file::mode_read).close(); }},
    {"open to write and close", 4, 3, "the same with a lock",
     [](wide_string const & in) { nio::file(file_in(in), nio::file::mode_read_write).close(); }},
    {"create and close", 4, 3, "whether it is there; open, lock, close",
     [](wide_string const & in) {
         nio::file made(in + u"\\new", nio::file::mode_closed);
         made.create(false);
         made.close();
     }},
    {"delete", 4, 3, "the sidecar is looked for; lstat for the write bit, unlink",
     [](wide_string const & in) { nio::file(file_in(in), nio::file::mode_closed).unlink(true); }},
    {"io delete", 2, 3, "lstat for the write bit, unlink",
     [](wide_string const & in) { io::file(item_in(in)).unlink(true); }},
    {"make a folder", 6, 3, "whether it and its parent are there, mkdir",
     [](wide_string const & in) { nio::directory(in + u"\\new").create(); }},
    {"remove a folder", 1, 3, "rmdir", [](wide_string const & in) { nio::directory(in + u"\\sub").unlink(true); }},
    {"rename", 1, 3, "one call for both names",
     [](wide_string const & in) { io::item(item_in(in)).rename(any::string(u"new")); }},
    {"move to another folder", 1, 6, "one call for both names; the folders of two paths",
     [](wide_string const & in) { io::item(item_in(in)).move(io::directory(as_path(in + u"\\sub"))); }},
    {"nio move", 3, 6, "the sidecar is looked for; one call for both names; the folders of two paths",
     [](wide_string const & in) {
         wide_string to = in + u"\\sub\\file";
         nio::move(file_in(in), to, true);
     }},
    {"walk 10 entries", 4, 1, "open, two reads, close", [](wide_string const & in) { walk(in, false); }},
    {"walk 10 entries with attributes", 36, 2, "the walk; open, close; the attributes of each",
     [](wide_string const & in) { walk(in, true); }},
    {"io walk 10 entries", 4, 1, "open, two reads, close", [](wide_string const & in) { walk_items(in, names_only); }},
    {"io walk 10 entries with attributes", 26, 2, "the walk; open, close; the attributes of each",
     [](wide_string const & in) { walk_items(in, io::attributes::no_sidecar); }},
    {"io walk 10 entries with sidecars", 56, 2, "the same; the sidecar of each and its two side forks are looked for",
     [](wide_string const & in) { walk_items(in, io::attributes::with_sidecar); }},
    {"io scan 10 files", 44, 1, "the walk; open, kind, size, close of each",
     [](wide_string const & in) {
         io::item item(as_path(in + u"\\walked"));
         io::item::summary sum;
         item.scan(sum);
     }},
    {"remove 10 files", 34, 1, "the walk; sidecar, write bit, unlink of each",
     [](wide_string const & in) { nio::directory(in + u"\\walked").unlink_children(true); }},
    {"io remove 10 files", 27, 1, "the walk; write bit, unlink of each; listed again",
     [](wide_string const & in) { io::directory(as_path(in + u"\\walked")).unlink_children(true); }},
};

/// The calls of an operation in a folder `depth` folders down.
int calls_of(budget const & row, int depth, bool attached) {
    scratch const here; // on a disk with extended attributes
    std::string folder = "n";
    for (int i = 0; i < depth; ++i)
        folder += "/d";
    fs::create_directories(here.host(folder + "/sub"));
    fs::create_directories(here.host(folder + "/walked"));
    fs::create_directories(here.host("m"));
    here.write(folder + "/file", "bytes");
    for (int i = 0; i < entries; ++i)
        here.write(folder + "/walked/" + std::to_string(i), "bytes");
    for (char const letter : attached ? std::string("NMO") : std::string()) {
        fs::create_directories(here.host(std::string(1, letter)));
        EXPECT_EQ(platform::attach_volume(letter, here.host(std::string(1, letter)), "FAT32"), 0u);
    }
    calls.clear();
    count = 0;
    host::fault = count_call;
    row.run(here.path(folder));
    host::fault = nullptr;
    for (char const letter : attached ? std::string("NMO") : std::string())
        platform::detach_volume(letter);
    return count;
}

TEST(call_budgets, are_kept_at_any_depth_and_with_volumes) {
    for (budget const & row : budgets) {
        calls_of(row, 2, false); // what is asked once in a process
        int const plain = calls_of(row, 2, false);
        EXPECT_LE(plain, row.calls) << row.operation << ": " << row.what_for << ':' << calls;
        EXPECT_EQ(calls_of(row, 40, false), plain) << row.operation << ':' << calls;
        int const attached = calls_of(row, 2, true);
        EXPECT_LE(attached, plain + row.more) << row.operation << ':' << calls;
        EXPECT_EQ(calls_of(row, 40, true), attached) << row.operation << ':' << calls;
    }
}

} // namespace
