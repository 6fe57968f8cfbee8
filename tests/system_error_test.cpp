#include "socle/io/exception.h"
#include "socle/io/system_error.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/platform/error_text.h"
#include "socle/platform/errors.h"

#include <gtest/gtest.h>

namespace {

using namespace platform;

TEST(system_error, text_in_a_buffer) {
    char buffer[256];
    uint32 const size = FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, sizeof buffer);
    EXPECT_TRUE(narrow_string(buffer, size).ends_with(".\r\n"));
    EXPECT_EQ(buffer[size], '\0');
    EXPECT_EQ(FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, size + 1), size);
    EXPECT_EQ(FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, size), 0u);
}

TEST(system_error, in_a_filesystem_exception) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    nio::filesystem_exception const missing("cannot open file", u"a\\\xe9\u0436");
    EXPECT_EQ(missing.message(), "cannot open file (a\\\xe9_) 2 " + system_error_text(2));
    EXPECT_EQ(missing.error(), 2u);
    SetLastError(0xFFFFFFFF);
    EXPECT_EQ(nio::filesystem_exception("odd", u"").message(), "odd () 4294967295 unknown error");
    SetLastError(ERROR_BROKEN_PIPE);
    nio::filesystem_exception const ended("cannot read", u"stdin");
    EXPECT_EQ(ended.message(), "cannot read");
    EXPECT_EQ(ended.error(), 109u);
    try {
        throw ended;
    } catch (basic::exception const & e) {
        EXPECT_EQ(e.message(), "cannot read");
    }
}

TEST(system_error, raised_by_the_io_family) {
    any::path const path(any::string(u"a\\\xe9"), false);
    SetLastError(ERROR_FILE_NOT_FOUND);
    try {
        io::raise_system_error(path, "cannot open", "io::fork");
        ADD_FAILURE();
    } catch (io::exception const & e) {
        EXPECT_EQ(e.message(), "cannot open \"a\\\xe9\"; 2 " + system_error_text(2));
        EXPECT_EQ(e.origin(), "io::fork");
        EXPECT_EQ(e.error(), 2);
    }
    SetLastError(ERROR_BROKEN_PIPE);
    EXPECT_NO_THROW(io::raise_system_error(path, "cannot read from", "io::fork"));
}

} // namespace
