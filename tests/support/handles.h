#pragma once

#include "socle/platform/directories.h"
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
    uint64 size = 0;
    EXPECT_TRUE(GetFileSize(file, size));
    std::string bytes(static_cast<std::size_t>(size), '\0');
    uint32 done = 0;
    EXPECT_TRUE(ReadFile(file, bytes.data(), uint32(size), done) && CloseHandle(file));
    return bytes.substr(0, done);
}

/// Makes it hold this; 0 or the code.
inline uint32 put(wide_string const & path, std::string const & bytes) {
    using namespace platform;
    int const file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS, 0);
    uint32 done = 0;
    bool const written = file != INVALID_HANDLE_VALUE && WriteFile(file, bytes.data(), uint32(bytes.size()), done);
    return code(written && CloseHandle(file));
}

/// The names that a search finds, to its end.
inline std::vector<wide_string> search(wide_string const & pattern) {
    std::vector<wide_string> names;
    platform::WIN32_FIND_DATAW data;
    platform::search_handle const found(platform::FindFirstFileW(pattern, data));
    for (bool more = found != nullptr; more; more = platform::FindNextFileW(found.get(), data))
        names.push_back(data.cFileName);
    EXPECT_EQ(platform::GetLastError(), platform::ERROR_NO_MORE_FILES);
    return names;
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

    /// What each way to open a file ends in: 0 or the code.
    struct openings {
        std::string name;
        uint32 open, open_rw, create_new, create_always, times, backup;
    };
    void expect(std::vector<openings> const & rows) const {
        using namespace platform;
        for (auto const & row : rows) {
            SCOPED_TRACE(row.name.substr(0, 40));
            auto const open_all = [&](uint32 access, uint32 sharing) {
                return code_of(
                    CreateFileW(scratch_.path(row.name), access, sharing, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS));
            };
            EXPECT_EQ(code_of(open(row.name)), row.open);
            EXPECT_EQ(code_of(open_rw(row.name)), row.open_rw);
            EXPECT_EQ(open_all(0, share_all), row.times);
            EXPECT_EQ(open_all(GENERIC_READ, FILE_SHARE_READ), row.backup);
            EXPECT_EQ(code_of(create(row.name, CREATE_NEW)), row.create_new);
            EXPECT_EQ(code_of(create(row.name)), row.create_always);
        }
    }

    /// The system code of an opening, whose handle is closed at once.
    static uint32 code_of(int file) {
        return file == platform::INVALID_HANDLE_VALUE ? platform::GetLastError() : platform::CloseHandle(file) ? 0 : 1;
    }

    scratch scratch_;
};
