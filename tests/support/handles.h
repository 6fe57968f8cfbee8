#pragma once

#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

constexpr uint32 read_write = platform::GENERIC_READ | platform::GENERIC_WRITE;
constexpr uint32 share_all = platform::FILE_SHARE_READ | platform::FILE_SHARE_WRITE;

/// 0 if a call has succeeded, else its code.
inline uint32 code(bool done) { return done ? 0 : platform::GetLastError(); }

/// What the stream, or file, holds; the code in digits if it cannot be read.
inline std::string get(wide_string const & path) {
    using namespace platform;
    int const file = CreateFileW(path, GENERIC_READ, share_all, OPEN_EXISTING, 0);
    if (file == INVALID_HANDLE_VALUE)
        return std::to_string(GetLastError());
    char bytes[100];
    uint32 done = 0;
    EXPECT_TRUE(ReadFile(file, bytes, sizeof bytes, done) && CloseHandle(file));
    return std::string(bytes, done);
}

/// Makes it hold this; 0 or the code.
inline uint32 put(wide_string const & path, std::string const & bytes) {
    using namespace platform;
    int const file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS, 0);
    uint32 done = 0;
    bool const written = file != INVALID_HANDLE_VALUE && WriteFile(file, bytes.data(), uint32(bytes.size()), done);
    return code(written && CloseHandle(file));
}

/// Handles of files in a scratch folder.
class handles_test : public testing::Test {
protected:
    ~handles_test() override { platform::detach_volume('N'); }

    int open(std::string const & name) const {
        return platform::CreateFileW(scratch_.path(name), platform::GENERIC_READ, share_all, platform::OPEN_EXISTING,
                                     0);
    }
    int open_rw(std::string const & name) const {
        return platform::CreateFileW(scratch_.path(name), read_write, platform::FILE_SHARE_READ,
                                     platform::OPEN_EXISTING, 0);
    }
    int create(std::string const & name, uint32 disposition = platform::CREATE_ALWAYS) const {
        return platform::CreateFileW(scratch_.path(name), read_write, platform::FILE_SHARE_READ, disposition, 0);
    }

    /// The system code of an opening, whose handle is closed at once.
    static uint32 code_of(int file) {
        return file == platform::INVALID_HANDLE_VALUE ? platform::GetLastError() : platform::CloseHandle(file) ? 0 : 1;
    }

    scratch scratch_;
};
