#include "socle/io/describe.h"
#include "socle/io/exception.h"
#include "socle/io/file.h"
#include "socle/io/fork_input.h"
#include "socle/io/fork_output.h"
#include "socle/io/open_fork.h"
#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/qpthr/exception.h"
#include "socle/stream/exception.h"
#include "tests/support/raised.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using support::raised_with_code;

/// Runs a test with names in both forms.
struct disk : testing::TestWithParam<bool> {
    disk() { io::wide_calls = GetParam(); }
    ~disk() override { io::wide_calls = true; }

    any::path path(std::string const & name) const { return {files.path(name), true}; }
    io::file file(std::string const & name) const { return io::file(path(name)); }

    scratch files;
};

INSTANTIATE_TEST_SUITE_P(names, disk, testing::Bool());

TEST(items, wide_calls_are_found_out_at_load) { EXPECT_TRUE(io::wide_calls); }

TEST(items, normalize_keeps_only_a_drive_in_front) {
    struct {
        std::vector<wide_string> elements;
        wide_string result;
        bool wide;
    } const cases[] = {
        {{u"C:", u"a?b", u"c*d"}, u"C:\\a_b\\c_d", true},
        {{u"AB", u"C:", u"x"}, u"AB\\C_\\x", true},
        {{u"C:x", u"a:"}, u"C_x\\a_", true},
        {{u"\x1F\"</>|\\", u" \x7F\x80."}, u"_______\\ \x7F\x80.", true},
        {{u"é"}, u"_", false},
        {{u"plain", u".."}, u"plain\\..", false},
    };
    for (auto const & [elements, result, wide] : cases) {
        io::wide_calls = wide;
        io::item item;
        for (auto const & element : elements)
            item.path().push_back(element);
        bool const differs = item.path().full_string() != result;
        EXPECT_EQ(item.normalize(), differs);
        EXPECT_EQ(item.path().full_string(), result);
        io::wide_calls = true;
    }
}

TEST_P(disk, a_file_exists_while_any_fork_does) {
    for (char const * fork : {"f", "f.rsrc", "f.info"}) {
        files.write(fork, "");
        EXPECT_TRUE(file("f").exists());
        EXPECT_EQ(file("f").io::item::exists(), std::string("f") == fork);
        std::filesystem::remove(files.host(fork));
    }
    EXPECT_FALSE(file("f").exists());
    EXPECT_EQ(io::file().rsrc_fork().fork_name().size(), 0u);
}

TEST_P(disk, copies_start_with_all_forks_closed) {
    files.write("f", "data");
    io::file first = file("f");
    first.data_fork().open();
    io::file copy(first);
    EXPECT_EQ(copy.data_fork().tell(), ~uint64());
    copy.data_fork().open();
    copy = file("g"); // leaves the forks as they are
    EXPECT_TRUE(copy.path().leaf() == u"g");
    EXPECT_EQ(copy.data_fork().size(), 4u);
    first.data_fork().close(true);
    copy.data_fork().close(true);
    io::item const & item = first;
    io::rsrc_fork const fork(first);
    EXPECT_TRUE(io::file(item).rsrc_fork().fork_name().full_string() == io::rsrc_fork(fork).fork_name().full_string());
}

TEST_P(disk, a_guard_opens_a_fork_and_closes_it) {
    io::file f = file("f");
    auto & fork = f.data_fork();
    {
        io::open_fork const made(fork, io::fork::create_new);
        made->write("four", 4);
    }
    EXPECT_FALSE(fork.descriptor().valid());
    EXPECT_EQ(raised_with_code([&] { io::open_fork(fork, io::fork::create_new); }), "io::fork: cannot create: 80");
    {
        io::open_fork changed(fork, io::fork::open_read_write);
        changed->resize(2);
        changed.commit();
        EXPECT_FALSE(fork.descriptor().valid());
    }
    EXPECT_EQ(io::open_fork(fork)->size(), 2u);
    io::open_fork(fork, io::fork::create_always).commit();
    EXPECT_EQ(files.read("f"), "");
    io::open_fork unwritable(fork);
    EXPECT_EQ(raised_with_code([&] { unwritable.commit(); }), "io::fork: cannot flush: 5");
}

TEST_P(disk, what_failed_is_described) {
    auto const thrown = [](auto const & act) {
        try {
            act();
        } catch (...) {
            return std::current_exception();
        }
        return std::exception_ptr();
    };
    struct {
        std::exception_ptr thrown;
        std::string words, path, origin;
        int code;
    } const table[] = {
        {thrown([&] { file("no (f) 2").data_fork().open(); }), "cannot open", "no (f) 2", "io::fork", 2},
        {thrown([&] { nio::file(files.path("no (f) 2"), nio::file::mode_read); }), "cannot open file", "no (f) 2", "",
         2},
        {thrown([] { throw io::exception("words", "origin", 0); }), "words", "", "origin", 0},
        {thrown([] { throw stream::exception("words", "origin"); }), "words", "", "origin", 0},
        {thrown([] { throw qpthr::QpUserException(7, "words"); }), "words", "", "", 7},
        {thrown([] { throw nio::exception("words"); }), "words", "", "", 0},
        {thrown([] { throw std::runtime_error("words"); }), "words", "", "", 0},
        {thrown([] { throw 1; }), "unknown exception", "", "", 0},
        {nullptr, "", "", "", 0},
    };
    for (auto const & row : table) {
        io::description const told = io::describe(row.thrown);
        EXPECT_EQ(told.words, row.words);
        EXPECT_TRUE(row.path.empty() ? told.path.empty() : told.path.ends_with("\\" + row.path)) << told.path;
        EXPECT_EQ(told.origin, row.origin);
        EXPECT_EQ(told.code, row.code);
        EXPECT_TRUE(told.message.starts_with(told.words));
    }
}

TEST_P(disk, a_closed_fork_answers_without_opening) {
    files.write("f", "four");
    bool const pipes = support::make_fifo(files.host("pipe"));
    std::filesystem::create_directory(files.host("folder"));
    struct {
        char const * name;
        uint64 size;
        std::string error;
    } const cases[] = {
        {"f", 4, ""},
        {"pipe", 0, ""},
        {"folder", 0, "io::fork: cannot open: 5"},
        {"missing", 0, "io::fork: cannot open: 2"},
    };
    for (auto const & [name, size, error] : cases) {
        SCOPED_TRACE(name);
        if (std::string("pipe") == name && !pipes)
            continue;
        io::file f = file(name);
        auto & fork = f.data_fork();
        EXPECT_EQ(fork.size(), size);
        EXPECT_FALSE(fork.descriptor().valid());
        EXPECT_EQ(fork.tell(), all_ones);
        EXPECT_FALSE(fork.seek(1));
        fork.resize(1);
        fork.flush(true);
        fork.close(true);
        char byte = 0;
        EXPECT_EQ(fork.read(&byte, 0), 0u);
        EXPECT_EQ(raised_with_code([&] { fork.read(&byte, 1); }), "io::fork: cannot read from: 6");
        EXPECT_EQ(raised_with_code([&] { fork.write(&byte, 1); }), "io::fork: cannot write to: 6");
        EXPECT_EQ(raised_with_code([&] { fork.open(); }), error);
        fork.close(true);
    }
    EXPECT_EQ(files.read("f"), "four");
    EXPECT_EQ(raised_with_code([&] { file("missing").data_fork().open_rw(); }), "io::fork: cannot open_rw: 2");
}

TEST_P(disk, resize_keeps_the_position_within_the_fork) {
    io::file f = file("f");
    f.create(false);
    auto & fork = f.data_fork();
    for (auto const & [at, size, then] : {std::array<uint64, 3>{100, 200, 100}, {100, 10, 10}, {0x100000000, 5, 5}}) {
        fork.seek(at);
        fork.resize(size);
        EXPECT_EQ(fork.tell(), then);
        EXPECT_EQ(fork.size(), size);
    }
    io::file second(f);
    EXPECT_FALSE(second.data_fork().descriptor().valid());
    EXPECT_EQ(raised_with_code([&] { second.data_fork().open_rw(); }), "io::fork: cannot open_rw: 32");
    fork.close(true);
    fork.open();
    if (support::limit_of_resizing().empty())
        EXPECT_EQ(raised_with_code([&] { fork.resize(1); }), "io::fork: cannot resize: 5");
    fork.unlink(true);
    EXPECT_FALSE(f.exists());
}

TEST_P(disk, forks_of_a_caller_see_the_calls_that_are_told) {
    struct watched : io::data_fork {
        using data_fork::data_fork;
        void write(char const * data, uint32 count) override {
            calls += 'w';
            data_fork::write(data, count);
        }
        void close(bool report) override {
            calls += 'c';
            data_fork::close(report);
        }
        std::string calls;
    };
    io::file f = file("f");
    watched fork(f);
    fork.unlink(false);
    EXPECT_EQ(fork.calls, "");
    fork.create(false);
    io::fork_output(fork).write(narrow_string());
    io::fork_output(fork).write(narrow_string("text"));
    fork.unlink(true);
    EXPECT_EQ(fork.calls, "wwc");
}

TEST_P(disk, fork_streams_seek_instead_of_reading) {
    io::file f = file("f");
    auto & fork = f.rsrc_fork();
    fork.create(false);
    io::fork_output out(fork);
    io::fork_input in(fork);
    out.write(std::string("a\0\xFF", 3));
    out.fill(97, 'z');
    EXPECT_EQ(out.tell(), 100u);
    EXPECT_TRUE(out.seek(4));
    out.write('y');
    EXPECT_TRUE(out.size() == 100 && in.size() == 100);
    in.seek(0);
    EXPECT_EQ(in.read(), 'a');
    in.unread('x');
    EXPECT_EQ(in.read(), 'a');
    EXPECT_EQ(in.read(), 0);
    EXPECT_EQ(in.read(), 255);
    EXPECT_THROW(in.unread("wxyz", 4), stream::exception);
    EXPECT_EQ(in.tell(), 3u);
    EXPECT_EQ(in.skip(1), 1u);
    EXPECT_EQ(in.read(), 'y');
    for (auto const & [at, skipped] : {std::pair(95u, 5u), std::pair(200u, 0u)}) {
        in.seek(at);
        EXPECT_EQ(in.skip(10), skipped);
        EXPECT_EQ(in.read(), -1);
        EXPECT_EQ(in.tell(), at + skipped);
    }
    out.resize(1);
    out.close();
    EXPECT_FALSE(fork.descriptor().valid());
    EXPECT_EQ(files.read("f.rsrc"), "a");
}

TEST(forks, take_the_standard_streams) {
    scratch const files;
    files.write("typed", "typed");
    support::standard_input input;
    char bytes[6] = {};
    io::file file;
    input.comes_from(files.host("typed"));
    file.data_fork().open_stdin();
    EXPECT_FALSE(file.data_fork().console());
    EXPECT_EQ(file.data_fork().read(bytes, 5), 5u);
    EXPECT_STREQ(bytes, "typed");
    file.data_fork().close(true);
    input.comes_from(files.host("typed"));
    nio::file wide(u"", nio::file::mode_closed);
    wide.open_stdin();
    EXPECT_EQ(wide.read(bytes, 2), 2u);
    wide.close();
    input.close();
    EXPECT_EQ(raised_with_code([&] { file.data_fork().open_stdin(); }).substr(0, 27), "io::fork: cannot open stdin");
}

} // namespace
