#include "platform/error_text.h"
#include "platform/errors.h"
#include "platform/posix/error_codes.h"

#include <gtest/gtest.h>

namespace {

using namespace platform;

TEST(system_error, every_failure_of_the_host_has_a_text) {
    EXPECT_EQ(posix::code_of(0), 0u);
    SetLastError(77);
    for (int error = 1; error < 140; ++error) {
        uint32 const code = posix::code_of(error);
        EXPECT_NE(code, 0u) << error;
        narrow_string const text = system_error_text(code);
        EXPECT_NE(text, "unknown error") << error;
        EXPECT_TRUE(!text.empty() && std::string_view("\r\n.").find(text.back()) == std::string_view::npos) << text;
    }
    EXPECT_EQ(system_error_text(0xFFFFFFFF), "unknown error");
    EXPECT_EQ(GetLastError(), 77u);
}

TEST(system_error, text_in_a_buffer) {
    char buffer[256];
    uint32 const size = FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, sizeof buffer);
    EXPECT_TRUE(narrow_string(buffer, size).ends_with(".\r\n"));
    EXPECT_EQ(buffer[size], '\0');
    EXPECT_EQ(FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, size + 1), size);
    EXPECT_EQ(FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, size), 0u);
}

} // namespace
