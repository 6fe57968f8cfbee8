#include "socle/io/item.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "socle/nio/item.h"
#include "socle/nio/move.h"
#include "tests/support/ntfs_folder.h"

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

class nio_item : public testing::Test {
protected:
    scratch folder_;
    wide_string path_ = folder_.path("");
};

TEST_F(nio_item, fork_names_by_text) {
    EXPECT_EQ(nio::ufs_name(u"dir\\a"), u"dir\\._a");
    EXPECT_EQ(nio::ufs_name(u"a"), u"._a");
    EXPECT_EQ(nio::ufs_name(u"C:\\dir/a"), u"C:\\dir/._a");
    EXPECT_EQ(nio::ntfs_rsrc_name(u"d\\a"), u"d\\a:AFP_Resource");
    EXPECT_EQ(nio::ntfs_info_name(u"d\\a"), u"d\\a:AFP_AfpInfo");
    EXPECT_TRUE(nio::is_ntfs_rsrc_name(u":AFP_Resource"));
    EXPECT_FALSE(nio::is_ntfs_rsrc_name(u"AFP_Resource"));
    EXPECT_FALSE(nio::is_ntfs_rsrc_name(u"a:AFP_Resourc"));
    EXPECT_TRUE(nio::is_ntfs_info_name(u"a:AFP_AfpInfo"));
    EXPECT_FALSE(nio::is_ntfs_info_name(u"a:AFP_AfpInf"));
}

TEST_F(nio_item, fork_names_by_volume) {
    ntfs_folder const ntfs;
    if (!ntfs.attached())
        GTEST_SKIP() << ntfs_folder::limit;
    wide_string const flat = path_ + u"a";
    EXPECT_FALSE(nio::is_ntfs(flat));
    EXPECT_TRUE(nio::is_ntfs(u"N:\\a"));
    EXPECT_TRUE(nio::is_ntfs(u"n:/missing/a"));
    EXPECT_TRUE(nio::is_ntfs(ntfs.path("x/../a")));
    EXPECT_FALSE(nio::is_ntfs(u"Q:\\a"));
    EXPECT_FALSE(nio::is_ntfs(u"\\\\host\\share\\a"));
    EXPECT_FALSE(nio::is_ntfs(u""));
    struct row {
        wide_string path;
        bool must_exist, allow_ntfs, in_stream;
    };
    ntfs.write("plain", "");
    for (row const & r : {
             row{u"N:\\plain", false, true, true},
             row{u"N:\\plain", true, true, false},
             row{u"N:\\plain", false, false, false},
             row{flat, false, true, false},
         }) {
        EXPECT_EQ(nio::is_ntfs_rsrc_name(nio::rsrc_name(r.path, r.must_exist, r.allow_ntfs)), r.in_stream);
        EXPECT_EQ(nio::is_ntfs_info_name(nio::info_name(r.path, r.must_exist, r.allow_ntfs)), r.in_stream);
    }
    EXPECT_FALSE(nio::exists_rsrc(flat));
    folder_.write("._a", "");
    EXPECT_TRUE(nio::exists_rsrc(flat));
    EXPECT_TRUE(nio::exists_ufs(flat));
}

TEST_F(nio_item, exists_whatever_it_is) {
    folder_.write("file", "");
    fs::create_directory(folder_.host("dir"));
    bool const links = support::limit_of_links().empty();
    if (links) {
        support::make_link("dir", folder_.host("to_dir"));
        support::make_link("nowhere", folder_.host("dangling"));
    }
    struct row {
        char16_t const * name;
        bool exists, directory;
    };
    for (row const & r : {row{u"file", true, false}, row{u"dir", true, true}, row{u"dir\\", true, true},
                          row{u"to_dir", links, links}, row{u"dangling", links, false}, row{u"missing", false, false},
                          row{u"file\\x", false, false}, row{u"a?", false, false}}) {
        nio::item const item(path_ + r.name);
        EXPECT_EQ(item.exists(), r.exists);
        EXPECT_EQ(item.is_directory(), r.directory);
    }
    EXPECT_FALSE(nio::exists(u""));
    EXPECT_FALSE(nio::exists(path_ + wide_string(5000, u'x')));
}

TEST_F(nio_item, make_absolute) {
    EXPECT_TRUE(nio::make_absolute(u"\\a/b\\.\\c\\..\\d").ends_with(u":\\a\\b\\d"));
    EXPECT_EQ(nio::make_absolute(u"N:a"), u"N:\\a");
    EXPECT_EQ(nio::make_absolute(u""), u"");
    io::item item(any::path(u"N:a\\..\\b", true));
    item.make_absolute();
    EXPECT_EQ(item.path().full_string(), u"N:\\b");
}

TEST_F(nio_item, make_unique) {
    folder_.write("a.b.txt", "");
    folder_.write("a.b_1.txt", "");
    folder_.write(".profile", "");
    EXPECT_EQ(nio::make_unique(path_ + u"free", 0), path_ + u"free");
    EXPECT_EQ(nio::make_unique(path_ + u"a.b.txt", 2), path_ + u"a.b_2.txt");
    EXPECT_EQ(nio::make_unique(path_ + u".profile", 1), path_ + u"_1.profile");
    for (uint32 tries : {0u, 1u}) {
        try {
            nio::make_unique(path_ + u"a.b.txt", tries);
            ADD_FAILURE();
        } catch (nio::filesystem_exception const & e) {
            EXPECT_TRUE(e.message().starts_with("cannot resolve a name conflict ("));
        }
    }
}

TEST_F(nio_item, links) {
    EXPECT_TRUE(nio::is_link(u"d\\A.LNK"));
    EXPECT_FALSE(nio::is_link(u"d.lnk\\A"));
    fs::copy(fs::path(TEST_DATA) / "links/nonascii.lnk", folder_.host("x.Lnk"));
    fs::copy(fs::path(TEST_DATA) / "links/nonascii.lnk", folder_.host("x"));
    folder_.write("broken.lnk", "no link");
    EXPECT_EQ(nio::resolve_link(path_ + u"x.Lnk"), u"C:\\socle\\Gr\xf6\xdf\x65 \xe9t\xe9.txt");
    for (char16_t const * name : {u"x", u"broken.lnk", u"missing.lnk"})
        EXPECT_EQ(nio::resolve_link(path_ + name), path_ + name);
    struct {
        char16_t const * name;
        bool link, resolved;
        wide_string path;
    } const items[] = {{u"x.Lnk", true, true, u"C:\\socle\\Gr\xf6\xdf\x65 \xe9t\xe9.txt"},
                       {u"x", false, true, path_ + u"x"},
                       {u"broken.lnk", true, false, path_ + u"broken.lnk"}};
    for (auto const & i : items) {
        io::item item(any::path(path_ + i.name, true));
        EXPECT_EQ(item.link(), i.link);
        EXPECT_EQ(item.resolve_link(), i.resolved);
        EXPECT_EQ(item.path().full_string(), i.path);
    }
}

TEST_F(nio_item, temp_directory) {
    support::set_variable("TEMP", "/tmp/\xc3\xa9");
    support::set_variable("TMP", "/other");
    EXPECT_EQ(nio::temp_directory(), u"/tmp/\xe9");
    support::set_variable("TEMP", nullptr);
    EXPECT_EQ(nio::temp_directory(), u"/other");
    support::set_variable("TMP", nullptr);
    EXPECT_EQ(nio::temp_directory(), u".");
}

TEST_F(nio_item, moves_a_file_with_its_sidecar) {
    folder_.write("a", "data");
    folder_.write("._a", "fork");
    wide_string to = path_ + u"b";
    EXPECT_FALSE(nio::move(path_ + u"a", to, true));
    EXPECT_EQ(folder_.read("b") + folder_.read("._b") + folder_.read("a") + folder_.read("._a"),
              "datafork(none)(none)");

    // A name that is not accepted is mended, unless the call must succeed as it is.
    to = path_ + u"c?";
    EXPECT_THROW(nio::move(path_ + u"b", to, true), nio::filesystem_exception);
    EXPECT_EQ(to, path_ + u"c?");
    EXPECT_TRUE(nio::move(path_ + u"b", to, false));
    EXPECT_EQ(to, path_ + u"c_");
    EXPECT_EQ(folder_.read("c_") + folder_.read("._c_") + folder_.read("._b"), "datafork(none)");
}

TEST_F(nio_item, moves_that_fail_lose_nothing) {
    folder_.write("a", "data");
    folder_.write("._a", "fork");
    folder_.write("taken", "other");
    wide_string to = path_ + u"taken";
    EXPECT_FALSE(nio::move(path_ + u"a", to, false));
    try {
        nio::move(path_ + u"a", to, true);
        ADD_FAILURE();
    } catch (nio::filesystem_exception const & e) {
        EXPECT_TRUE(e.message().starts_with("cannot move (")) << e.message();
        EXPECT_NE(e.message().find("\\a) 183 "), narrow_string::npos) << e.message();
        EXPECT_EQ(e.error(), 183u);
    }
    EXPECT_EQ(folder_.read("a") + folder_.read("._a") + folder_.read("taken"), "dataforkother");

    // The sidecar's place is taken: the file comes back before the call raises.
    folder_.write("._b", "stray");
    to = path_ + u"b";
    EXPECT_THROW(nio::move(path_ + u"a", to, true), nio::filesystem_exception);
    EXPECT_EQ(folder_.read("a") + folder_.read("._a") + folder_.read("b") + folder_.read("._b"), "datafork(none)stray");
    // The mended name is tried once.
    folder_.write("d_", "other");
    to = path_ + u"d?";
    EXPECT_THROW(nio::move(path_ + u"a", to, false), nio::filesystem_exception);
    EXPECT_EQ(to, path_ + u"d_");
    EXPECT_EQ(folder_.read("a") + folder_.read("d_"), "dataother");
}

} // namespace
