// The stores of named streams behind the file calls, over the host's own calls.

#include "socle/platform/errors.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/streams/named_streams.h"
#include "socle/platform/stream_names.h"
#include "tests/support/ntfs_image.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <thread>

namespace {

using namespace platform;
using namespace platform::posix;
namespace fs = std::filesystem;
using names = std::vector<wide_string>;

class named_streams_test : public testing::Test {
protected:
    named_streams_test() { fs::create_directory(folder_ / "volume"); }

    fs::path path(char const * name) const { return folder_ / "volume" / name; }

    void SetUp() override { attach("volume"); }

    void attach(char const * volume) {
        ASSERT_EQ(make_named_streams(folder_ / volume, streams_), 0u) << "no extended attributes in /var/tmp?";
    }

    static void write(fs::path const & file, std::string const & bytes) { std::ofstream(file) << bytes; }

    void write_stream(fs::path const & file, wide_string const & name, std::string const & bytes) const {
        descriptor_guard stream;
        ASSERT_EQ(open_stream(*streams_, file.c_str(), name, O_WRONLY | O_TRUNC, stream), 0u);
        ASSERT_EQ(::write(stream.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    /// What the stream holds, "-" if there is none.
    std::string read_stream(fs::path const & file, wide_string const & name) const {
        descriptor_guard stream;
        if (open_stream(*streams_, file.c_str(), name, O_RDONLY, stream))
            return "-";
        std::ifstream in("/proc/self/fd/" + std::to_string(stream.get()), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    names list(fs::path const & file) const {
        names found;
        EXPECT_EQ(streams_->list(file.c_str(), found), 0u);
        return found;
    }

    /// A copy with the extended attributes, as tools make it that keep them.
    void copy_all(char const * from, char const * to) const {
        std::string const command = "cp -a '" + (folder_ / from).string() + "' '" + (folder_ / to).string() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    void remove(fs::path const & file) const {
        auto const remove = fs::is_directory(fs::symlink_status(file)) ? host::rmdir : host::unlink;
        ASSERT_FALSE(remove_with_streams(streams_.get(), file.c_str(), remove));
    }

    void remove_stream(fs::path const & file, wide_string const & name) const {
        stream_place place;
        ASSERT_EQ(streams_->locate(file.c_str(), name, named_streams::purpose::change, place), 0u);
        EXPECT_EQ(host::unlink(place.at()), 0);
    }

    std::size_t folders_in_store() const {
        fs::path const store = folder_ / "volume/.socle_streams";
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(store), fs::directory_iterator()));
    }

    scratch scratch_;
    fs::path folder_ = scratch_.folder();
    std::unique_ptr<named_streams> streams_;
};

TEST(stream_names, parse) {
    struct row {
        wide_string text;
        uint32 code;
        wide_string name;
    };
    wide_string const longest(255, u'n');
    for (row const & r : {
             row{u"note", 0, u"note"},
             row{u"note:$DATA", 0, u"note"},
             row{u"note:$data", 0, u"note"},
             row{u"$DATA", 0, u"$DATA"},
             row{u":$DATA", 0, u""},
             row{u"a?<*\x01", 0, u"a?<*\x01"},
             row{longest, 0, longest},
             row{longest + u"n", 123, u""},
             row{u"", 123, u""},
             row{u":", 123, u""},
             row{u"note:", 123, u""},
             row{u"note:$INDEX", 123, u""},
             row{u"note:$DATA:", 123, u""},
             row{u"a\\b", 123, u""},
             row{u"a/b", 123, u""},
             row{wide_string(u"a\0b", 3), 123, u""},
         }) {
        wide_string name;
        EXPECT_EQ(parse_stream_name(r.text, name), r.code);
        EXPECT_EQ(name, r.name);
    }
}

TEST(stream_names, stored_names_are_safe_and_come_back) {
    for (wide_string const & name :
         {wide_string(u"AFP_Resource"), wide_string(u".."), wide_string(u"a+b~"), wide_string(u"\xd800 \x01"),
          wide_string(255, u'x'), wide_string(255, u'\x4e00'), wide_string(120, u'x')}) {
        narrow_string stored = stored_stream_name(name);
        std::size_t length = 0;
        for (char c : stored) {
            length = c == '/' ? 0 : length + 1;
            EXPECT_LE(length, 143u);
        }
        EXPECT_EQ(stored.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_+~/"), narrow_string::npos);
        std::erase_if(stored, [](char c) { return c == '~' || c == '/'; });
        wide_string back;
        EXPECT_TRUE(stream_name_of(stored, back));
        EXPECT_EQ(back, name);
    }
    wide_string back;
    for (char const * foreign : {"", "+004", "+00zz", "+0061", "A", ".", "a b"})
        EXPECT_FALSE(stream_name_of(foreign, back)) << foreign;
}

/// What both stores do: our own, and that of a mounted disk (the parameter is true).
class both_stores_test : public named_streams_test, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        if (GetParam()) {
            disk_.emplace(folder_ / "image", folder_ / "volume");
            if (!disk_->mounted())
                GTEST_SKIP() << "an NTFS image cannot be made or mounted here";
        }
        attach("volume");
        EXPECT_EQ(fs::exists(path(".socle_streams")), false);
    }

    void expect_own_store_is_empty() const {
        if (!GetParam())
            EXPECT_EQ(folders_in_store(), 0u);
    }

    std::optional<ntfs_image> disk_;
};

INSTANTIATE_TEST_SUITE_P(stores, both_stores_test, testing::Bool(),
                         [](auto const & store) { return store.param ? "disk" : "own"; });

TEST_P(both_stores_test, live_with_their_file) {
    wide_string const longest(255, u'\x4e00');
    write(path("file"), "data");
    EXPECT_EQ(list(path("file")), names{});
    EXPECT_EQ(read_stream(path("file"), u"note"), "-");
    write_stream(path("file"), u"note", "one");
    write_stream(path("file"), longest, "two");
    EXPECT_EQ(list(path("file")), (names{u"note", longest}));
    EXPECT_EQ(read_stream(path("file"), longest), "two");

    fs::create_directory(path("folder"));
    fs::rename(path("file"), path("folder/moved"));
    fs::create_hard_link(path("folder/moved"), path("second"));
    fs::create_symlink("second", path("link"));
    for (char const * name : {"folder/moved", "second", "link"})
        EXPECT_EQ(read_stream(path(name), u"note"), "one") << name;

    remove(path("folder/moved"));
    EXPECT_EQ(read_stream(path("second"), u"note"), "one");
    remove(path("link"));
    EXPECT_EQ(read_stream(path("second"), u"note"), "one");
    remove(path("second"));
    expect_own_store_is_empty();
}

TEST_P(both_stores_test, folders_have_them_too) {
    fs::create_directory(path("folder"));
    write_stream(path("folder"), u"s", "of a folder");
    write_stream(folder_ / "volume", u"s", "of the volume");
    EXPECT_EQ(read_stream(path("folder"), u"s"), "of a folder");
    EXPECT_EQ(read_stream(folder_ / "volume", u"s"), "of the volume");
    EXPECT_EQ(list(folder_ / "volume"), (names{u"s"}));
    remove(path("folder"));
    remove_stream(folder_ / "volume", u"s");
    EXPECT_EQ(list(folder_ / "volume"), names{});
}

TEST_F(named_streams_test, what_cannot_have_them) {
    descriptor_guard stream;
    for (int const access : {O_WRONLY, O_RDONLY})
        EXPECT_EQ(open_stream(*streams_, path("missing").c_str(), u"s", access, stream), ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_NE(open_stream(*streams_, path("pipe").c_str(), u"s", O_WRONLY, stream), 0u);
    EXPECT_EQ(folders_in_store(), 0u);
    EXPECT_EQ(list(path("pipe")), names{});
    host::fault = [](char const * call) { return std::string_view(call).ends_with("xattr") ? ENOTSUP : 0; };
    EXPECT_EQ(list(path("")), names{}) << "where another file system is mounted";
    host::fault = nullptr;
    std::unique_ptr<named_streams> none;
    EXPECT_EQ(make_named_streams("/proc/self", none), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(make_named_streams(path("missing"), none), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(none, nullptr);
}

TEST_F(named_streams_test, made_by_many_at_once) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    for (int round = 0; round < 10; ++round) {
        fs::path const file = path(std::to_string(round).c_str());
        write(file, "data");
        std::vector<std::thread> threads;
        for (char16_t name = u'a'; name < u'i'; ++name)
            threads.emplace_back([this, file, name] { write_stream(file, wide_string(1, name), "x"); });
        for (std::thread & thread : threads)
            thread.join();
        EXPECT_EQ(list(file).size(), 8u);
    }
}

TEST_F(named_streams_test, a_copy_has_none_while_its_original_is_there) {
    write(path("file"), "data");
    write_stream(path("file"), u"note", "mine");
    copy_all("volume/file", "volume/copy");
    EXPECT_EQ(read_stream(path("copy"), u"note"), "-");
    write_stream(path("copy"), u"note", "its own");
    EXPECT_EQ(read_stream(path("file"), u"note"), "mine");
    remove(path("copy"));
    EXPECT_EQ(read_stream(path("file"), u"note"), "mine");
    copy_all("volume/file", "volume/copy");
    remove(path("file"));
    EXPECT_EQ(list(path("copy")), names{}) << "they have been removed with their file";
}

TEST_F(named_streams_test, a_copy_takes_over_where_its_original_has_gone) {
    write(path("file"), "data");
    write_stream(path("file"), u"note", "mine");
    copy_all("volume/file", "volume/file.new");
    fs::rename(path("file.new"), path("file"));
    EXPECT_EQ(read_stream(path("file"), u"note"), "mine");
    copy_all("volume/file", "volume/other");
    write_stream(path("file"), u"note", "changed");
    EXPECT_EQ(read_stream(path("file"), u"note"), "changed");
    // The original may have been moved, not removed, and then each has its own.
    fs::rename(path("file"), path("old"));
    copy_all("volume/old", "volume/file");
    EXPECT_EQ(read_stream(path("file"), u"note"), "changed");
    write_stream(path("file"), u"more", "of the copy");
    write_stream(path("file"), u"note", "of the copy");
    EXPECT_EQ(read_stream(path("old"), u"note"), "changed");
    EXPECT_EQ(list(path("old")), names{u"note"});
}

TEST_F(named_streams_test, a_copied_or_moved_volume_keeps_them) {
    for (char const * name : {"a", "renamed", "copied"}) {
        write(path(name), "data");
        write_stream(path(name), u"note", name);
    }
    fs::rename(path("renamed"), path("r"));
    copy_all("volume/copied", "volume/x copy");
    fs::create_hard_link(path("a"), path("b"));
    write_stream(folder_ / "volume", u"note", "of the volume");
    auto const expect_all = [&](char const * volume) {
        attach(volume);
        EXPECT_EQ(read_stream(folder_ / volume, u"note"), "of the volume");
        EXPECT_EQ(read_stream(folder_ / volume / "a", u"note"), "a");
        EXPECT_EQ(read_stream(folder_ / volume / "b", u"note"), "a");
        EXPECT_EQ(read_stream(folder_ / volume / "r", u"note"), "renamed");
        EXPECT_EQ(read_stream(folder_ / volume / "copied", u"note"), "copied");
        EXPECT_EQ(read_stream(folder_ / volume / "x copy", u"note"), "-");
    };
    fs::rename(folder_ / "volume", folder_ / "moved");
    expect_all("moved");
    copy_all("moved", "copy");
    expect_all("copy");
    expect_all("moved");
    // The streams of a copy are copies.
    attach("copy");
    write_stream(folder_ / "copy/a", u"note", "new");
    remove(folder_ / "copy/r");
    EXPECT_EQ(read_stream(folder_ / "copy/b", u"note"), "new");
    expect_all("moved");
}

// A copy that cannot be written.
TEST_F(named_streams_test, a_read_only_copy_shows_them) {
    write(path("a"), "data");
    write_stream(path("a"), u"note", "a");
    copy_all("volume", "copy");
    host::fault = [](char const * call) {
        std::string_view const name = call;
        return name == "setxattr" || name == "removexattr" || name == "chmod" || name == "chown" || name == "mkdir"
                   ? EROFS
                   : 0;
    };
    attach("copy");
    fs::permissions(folder_ / "copy/a", fs::perms::owner_all);
    EXPECT_EQ(read_stream(folder_ / "copy/a", u"note"), "a");
    descriptor_guard stream;
    EXPECT_EQ(open_stream(*streams_, (folder_ / "copy/a").c_str(), u"note", O_WRONLY, stream), ERROR_WRITE_PROTECT);
    host::fault = nullptr;
}

TEST_P(both_stores_test, copy_to_another_volume) {
    fs::create_directory(folder_ / "other");
    std::unique_ptr<named_streams> other;
    ASSERT_EQ(make_named_streams(folder_ / "other", other), 0u);
    write(path("file"), "data");
    write(folder_ / "other/file", "data");
    write_stream(path("file"), u"empty", "");
    write_stream(path("file"), u"big", std::string(1'000'000, 'x'));
    std::vector<descriptor_guard> held;
    ASSERT_EQ(copy_streams(*streams_, path("file").c_str(), *other, (folder_ / "other/file").c_str(), held), 0u);
    streams_ = std::move(other);
    EXPECT_EQ(list(folder_ / "other/file"), (names{u"big", u"empty"}));
    EXPECT_EQ(read_stream(folder_ / "other/file", u"big").size(), 1'000'000u);
}

TEST_F(named_streams_test, the_store_is_hidden) {
    write(path("file"), "data");
    write_stream(path("file"), u"s", "");
    EXPECT_TRUE(streams_->hides_path("/.socle_streams/id/s"));
    EXPECT_TRUE(streams_->hides_path("/.socle_streams"));
    EXPECT_FALSE(streams_->hides_path("/.socle_streams2"));
    EXPECT_FALSE(streams_->hides_path("/sub/.socle_streams"));
    EXPECT_FALSE(streams_->hides_path("/file"));
}

} // namespace
