#include "socle/io/attributes.h"

#include "socle/io/exception.h"
#include "socle/io/item.h"
#include "tests/support/raised.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

using support::raised_with_code;

uint64 const seconds = 3000000000;
uint64 const file_time = (seconds + 9561628800) * 10000000;

any::time mac(uint64 value) { return {value, any::time::format_mac_seconds}; }

uint64 const file_time_of_1904 = 95616288000000000;

std::string zeros(std::size_t count) { return std::string(count, '\0'); }

// Headers up to their CRC.
std::string const ending = "mBIN" + zeros(16) + "\x81\x81";
std::string const finder_header =
    zeros(65) + "TEXTttxt\x12\0\0\1\xFF\xFE"s + zeros(12) + "\xB2\xD0\x5E\0\xB2\xD0\x5E\1\0\0\x34"s + ending;
std::string const default_header = zeros(65) + "????????" + zeros(29) + ending;

struct disk : testing::Test {
    any::path path(std::string const & name) const { return {files.path(name), true}; }
    io::attributes loaded(std::string const & name, int type) const {
        io::attributes set;
        set.load(path(name), type);
        return set;
    }

    scratch files;
};

TEST(optional, is_changed_in_place_and_stays_absent) {
    io::optional<io::mac::file_attributes> set;
    set->info.type = "TEXT";
    EXPECT_FALSE(set);
    set = set.value();
    set.value().info.creator = "ttxt";
    EXPECT_TRUE(set && set->info.type == "TEXT" && set->info.creator == "ttxt");
    EXPECT_TRUE(io::optional<bool>(false));
}

TEST(attributes, dos_knows_five_of_the_bits) {
    struct {
        uint32 flags;
        uint16 from;
        uint32 then;
        uint16 to;
    } const cases[] = {
        {0x80000100, 0xFF, 0x80000037, 0x37},
        {0xFFFFFFFF, 0, 0xFFFF0000, 0},
        {0, 0xFFC8, 0, 0},
    };
    for (auto const & [flags, from, then, to] : cases) {
        io::win32::attributes bits;
        bits.flags = flags;
        EXPECT_EQ(bits.to_dos_flags(), flags & 0x37);
        bits.from_dos_flags(from);
        EXPECT_EQ(bits.flags, then);
        EXPECT_EQ(bits.to_dos_flags(), to);
    }
}

TEST_F(disk, load_derives_the_unix_mode_from_kind_and_write_bit) {
    files.write("file", "x");
    files.write("locked", "x");
    std::filesystem::create_directory(files.host("folder"));
    std::filesystem::create_directory(files.host("locked_folder"));
    ASSERT_TRUE(support::make_read_only(files.host("locked")));
    struct row {
        char const * name;
        uint32 flags;
        uint32 mode;
    };
    std::vector<row> cases = {{"file", 0x20, 0640}, {"locked", 0x21, 0400}, {"folder", 0x10, 0750}};
    // What not every system has.
    if (support::make_read_only(files.host("locked_folder")))
        cases.push_back({"locked_folder", 0x11, 0510});
    if (support::make_fifo(files.host("pipe")))
        cases.push_back({"pipe", 0, 0640});
    if (support::limit_of_links().empty()) {
        support::make_link("folder", files.host("link"));
        cases.push_back({"link", 0x10, 0750});
    }
    for (auto const & [name, flags, mode] : cases) {
        SCOPED_TRACE(name);
        io::attributes set;
        set.mac_file = io::mac::file_attributes();
        set.mac_folder = io::mac::folder_attributes();
        set.extra_path = path("old");
        set.load(path(name), 0);
        EXPECT_EQ(set.win32.value().flags & ~0x80u, flags);
        EXPECT_EQ(set.unix.value().mode, mode);
        EXPECT_EQ(set.read_only.value(), (flags & 1) != 0);
        EXPECT_TRUE(set.win32.present() && set.unix.present() && set.read_only.present());
        EXPECT_TRUE(set.created.present() && set.modified.present());
        EXPECT_FALSE(set.mac_file.present() || set.mac_folder.present() || set.extra_path.present());
    }
}

TEST_F(disk, only_types_1_and_3_read_a_sidecar) {
    files.write("f", "x");
    files.write("f.info", finder_header.substr(0, 102)); // the fields end there; mark, versions and CRC do not count
    for (int type = 0; type <= 3; ++type) {
        SCOPED_TRACE(type);
        bool const read = type == 1 || type == 3;
        auto const set = loaded("f", type);
        EXPECT_EQ(set.mac_file.present(), read);
        auto const & finder = set.mac_file.value().info;
        EXPECT_EQ(finder.type.to_string(), read ? "TEXT" : "????");
        EXPECT_EQ(finder.creator.to_string(), read ? "ttxt" : "????");
        EXPECT_EQ(finder.flags, read ? 0x1234 : 0);
        EXPECT_EQ(finder.location.v, read ? 1 : 0);
        EXPECT_EQ(finder.location.h, read ? -2 : 0);
        EXPECT_EQ(set.created.value().file_time() == file_time, read);
        EXPECT_EQ(set.modified.value().mac_time(), read ? (seconds + 1) << 16 : 0);
    }
}

TEST_F(disk, only_type_1_writes_a_sidecar) {
    io::mac::file_attributes finder;
    finder.info.type = "TEXT";
    finder.info.creator = "ttxt";
    finder.info.flags = 0x1234;
    finder.info.location = {1, -2};
    io::attributes full;
    full.mac_file = finder;
    full.mac_file.clear(); // what it holds counts
    full.created = mac(seconds);
    full.modified = mac(seconds + 1);
    io::attributes early;
    early.created = any::time(file_time_of_1904 - 1, any::time::format_file_time);
    early.modified = any::time(file_time_of_1904 + 9999999, any::time::format_file_time);
    struct {
        io::attributes const & set;
        std::string header;
    } const cases[] = {
        {full, finder_header + "\x7A\x02\0\0"s},
        {io::attributes(), default_header + "\x7E\xDE\0\0"s},
        {early, default_header + "\x7E\xDE\0\0"s},
    };
    for (auto const & [set, header] : cases) {
        for (int type = 0; type <= 3; ++type) {
            SCOPED_TRACE(type);
            files.write("f", "x");
            files.write("f.info", std::string(500, 'o'));
            set.apply(path("f"), type);
            EXPECT_EQ(files.read("f.info"), type == 1 ? header : std::string(500, 'o'));
            EXPECT_EQ(files.read("f"), "x");
        }
    }
}

TEST_F(disk, a_sidecar_that_holds_no_header_is_as_good_as_none) {
    files.write("f", "x");
    auto const plain = loaded("f", 0);
    auto const expect_plain = [&](char const * what) {
        SCOPED_TRACE(what);
        auto const set = loaded("f", 1);
        EXPECT_FALSE(set.mac_file.present());
        EXPECT_EQ(set.modified.value().file_time(), plain.modified.value().file_time());
    };
    expect_plain("none");
    files.write("f.info", finder_header.substr(0, 101));
    expect_plain("short");
    files.write("f.info", "");
    expect_plain("empty");
    std::filesystem::remove(files.host("f.info"));
    if (!support::make_fifo(files.host("f.info")))
        return;
    std::fstream const writer(files.host("f.info")); // a reader would wait now
    expect_plain("pipe");
    EXPECT_EQ(raised_with_code([&] { io::attributes().apply(path("f"), 1); }), "io::fork: cannot create: 5");
}

TEST_F(disk, failures_say_what_could_not_be_done) {
    files.write("f", "x");
    files.write("g", "x");
    files.write("h", "x");
    files.write("h.info.rsrc", "x"); // a side fork of a sidecar makes a file of it
    std::filesystem::create_directory(files.host("f.info"));
    bool const links = support::limit_of_links().empty();
    if (links)
        support::make_link("nowhere", files.host("g.info"));
    struct {
        char const * name;
        int type;
        std::string load;
        std::string apply;
    } const cases[] = {
        {"missing", 0, "io::attributes: what is this: 2", ""},
        {"missing/f", 0, "io::attributes: what is this: 3", ""},
        {"f", 4, "io::attributes: unknown attributes type: 0", "io::attributes: unknown attributes type: 0"},
        {"f", -1, "io::attributes: unknown attributes type: 0", "io::attributes: unknown attributes type: 0"},
        {"f", 1, "io::fork: cannot open: 5", "io::fork: cannot create: 5"},
        {"g", 1, "io::fork: cannot open: 2", "io::fork: cannot create: 80"},
        {"h", 3, "io::fork: cannot open: 2", ""},
    };
    for (auto const & row : cases) {
        SCOPED_TRACE(row.name);
        if (row.name[0] == 'g' && !links)
            continue;
        io::attributes set;
        set.read_only = true;
        EXPECT_EQ(raised_with_code([&] { set.load(path(row.name), row.type); }), row.load);
        EXPECT_TRUE(set.created.present() && set.modified.present());
        EXPECT_FALSE(set.read_only.value());
        EXPECT_EQ(set.win32.present(), row.name[1] == 0); // what was there is in the set
        EXPECT_EQ(raised_with_code([&] { set.apply(path(row.name), row.type); }), row.apply);
    }
    EXPECT_FALSE(files.exists("nowhere"));
    EXPECT_FALSE(files.exists("missing"));
}

TEST_F(disk, names_go_to_the_system_in_the_narrow_form_too) {
    io::wide_calls = false;
    for (char const * name : {"f", "\xC3\xA9"}) { // one that the ANSI page has
        files.write(name, "x");
        io::attributes set;
        set.created = mac(seconds);
        set.modified = mac(seconds);
        set.apply(path(name), 1);
        EXPECT_EQ(loaded(name, 0).modified.value().file_time(), file_time);
        EXPECT_EQ(loaded(name, 1).created.value().mac_time(), seconds << 16);
    }
    files.write("\xE6\x97\xA5", "x");
    EXPECT_NE(raised_with_code([&] { loaded("\xE6\x97\xA5", 0); }), "");
    io::wide_calls = true;
}

TEST_F(disk, a_set_survives_the_way_over_another_file) {
    if (auto const limit = support::limit_of_creation_times(); !limit.empty())
        GTEST_SKIP() << limit;
    std::filesystem::create_directory(files.host("folder"));
    io::attributes bits;
    io::win32::attributes hidden;
    hidden.flags = 0x23;
    bits.win32 = hidden;
    bits.modified = mac(seconds);
    bits.created = mac(seconds - 5);
    io::attributes flag;
    flag.read_only = true;
    io::attributes const nothing;
    struct {
        io::attributes const & set;
        uint32 flags;
    } const cases[] = {{bits, 0x23}, {flag, 0x21}, {nothing, 0x20}};
    for (auto const & [set, flags] : cases) {
        SCOPED_TRACE(flags);
        std::filesystem::remove(files.host("a"));
        std::filesystem::remove(files.host("b"));
        files.write("a", "x");
        files.write("b", "y");
        set.apply(path("a"), 0);
        auto const first = loaded("a", 0);
        EXPECT_EQ(first.win32.value().flags, flags);
        EXPECT_EQ(first.modified.value().file_time() == file_time, set.modified.present());
        first.apply(path("b"), 0);
        auto const second = loaded("b", 0);
        EXPECT_EQ(second.win32.value().flags, flags);
        EXPECT_EQ(second.read_only.value(), first.read_only.value());
        EXPECT_EQ(second.unix.value().mode, first.unix.value().mode);
        EXPECT_EQ(second.modified.value().file_time(), first.modified.value().file_time());
        EXPECT_EQ(second.created.value().file_time(), first.created.value().file_time());
    }
    bits.apply(path("folder"), 1);
    EXPECT_EQ(loaded("folder", 0).modified.value().file_time(), file_time);
    EXPECT_EQ(loaded("folder", 3).created.value().mac_time(), (seconds - 5) << 16);
}

} // namespace
