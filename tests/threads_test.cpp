#include "socle/any/converter.h"
#include "socle/any/path.h"
#include "socle/any/time.h"
#include "socle/io/directory.h"
#include "socle/io/exception.h"
#include "socle/io/file.h"
#include "socle/io/fork_output.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/encoding.h"
#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/platform/host.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/line_input.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <vector>

// What any thread may use at any time, used for the first time by several at once, and objects of their own in threads
// of their own. ThreadSanitizer watches for the rest.

namespace {

/// Each has the folder, and a name that no other thread has.
using work = void (*)(scratch const & folder, std::string const & own);

work const table[] = {
    // Page tables, and the list of pages that a converter tries.
    [](scratch const &, std::string const &) {
        for (int const page : {949, 950, 866, 1252, 10000})
            EXPECT_EQ(nio::decode(nio::encode(u"abc", page), page), u"abc");
    },
    [](scratch const &, std::string const &) {
        EXPECT_EQ(any::converter().from_unicode(u"\u0416", true), "\xC6") << "in 1251, the first page that has it";
    },
    // Data from load time.
    [](scratch const & folder, std::string const &) {
        EXPECT_TRUE((any::path::null + any::string(u"a")).full_string() == any::string(u"a"));
        EXPECT_EQ(io::directory::current.size(), 0u);
        EXPECT_TRUE(io::item(any::path(any::string(folder.path("")), true)).exists());
        nio::time time;
        time.set(86400, nio::time::format_unix_seconds);
        time.to_local();
        EXPECT_EQ(time.get(nio::time::format_unix_seconds), uint32((24 - 5) * 3600));
    },
    // Each thread has its own error.
    [](scratch const & folder, std::string const & own) {
        for (int i = 0; i < 20; ++i) {
            EXPECT_THROW(nio::file(folder.path(own + "/missing"), nio::file::mode_read), nio::exception);
            EXPECT_EQ(platform::last_error(), 3u);
        }
    },
    [](scratch const & folder, std::string const & own) {
        for (int i = 0; i < 20; ++i) {
            EXPECT_THROW(nio::file(folder.path("none" + own), nio::file::mode_read), nio::exception);
            EXPECT_EQ(platform::last_error(), 2u);
        }
    },
    // Streams.
    [](scratch const &, std::string const & own) {
        byte_vector bytes;
        stream::vector_output memory(bytes);
        stream::big_endian_output out(memory);
        for (uint16 i = 0; i < 1000; ++i)
            out.write16(i);
        out.write(own + "\n");
        stream::vector_input in(bytes, 2000);
        stream::line_input lines(in);
        EXPECT_EQ(lines.read_line(), own);
    },
    // Files and folders of both families.
    [](scratch const & folder, std::string const & own) {
        nio::file file(folder.path(own + "/deep/file"), nio::file::mode_closed);
        file.create(true);
        file.write("bytes", 5);
        file.close();
        nio::attributes set;
        set.finder_info.fill('f');
        set.apply(file, true, true);
        EXPECT_EQ(nio::attributes(file).finder_info, set.finder_info);
        nio::directory(folder.path(own)).unlink_with_children(true);
        EXPECT_FALSE(folder.exists(own));
    },
    [](scratch const & folder, std::string const & own) {
        io::directory top(any::path(any::string(folder.path(own)), true));
        top.create(false);
        io::file file(top.path() + any::string(u"file"));
        file.create(false);
        io::fork_output(file.data_fork()).write("bytes");
        file.data_fork().close(true);
        file.apply_attributes(1);
        io::item::summary sum;
        top.scan(sum);
        EXPECT_EQ(sum.bytes, 5u);
        top.unlink_with_children(true);
        EXPECT_FALSE(folder.exists(own));
    },
    // Named streams, whose store is one for all.
    [](scratch const &, std::string const & own) {
        wide_string const name = u"N:\\" + platform::from_host(own);
        nio::file(name, nio::file::mode_new).write("data", 4);
        nio::file(name + u":note", nio::file::mode_anew).write("note", 4);
        char bytes[5];
        EXPECT_EQ(nio::file(name + u":note", nio::file::mode_read).read(bytes, 5), 4u);
        nio::unlink(name, true);
    },
};

TEST(threads, use_the_library_at_once) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    scratch const folder;
    std::filesystem::create_directory(folder.host("n"));
    // Before other threads start, as told.
    std::size_t works = std::size(table);
    if (platform::attach_volume('N', support::text_of(folder.host("n")), "NTFS") != 0)
        --works; // no extended attributes in the folder for tests
    constexpr std::size_t times = 3;
    std::barrier start(static_cast<std::ptrdiff_t>(works * times));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < works * times; ++i) {
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            for (int round = 0; round < 3; ++round)
                table[i % works](folder, "own" + std::to_string(i));
        });
    }
    for (auto & thread : threads)
        thread.join();
    platform::detach_volume('N');
}

} // namespace
