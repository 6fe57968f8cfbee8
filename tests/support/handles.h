#pragma once

#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

constexpr uint32 read_write = platform::GENERIC_READ | platform::GENERIC_WRITE;
constexpr uint32 share_all = platform::FILE_SHARE_READ | platform::FILE_SHARE_WRITE;

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
