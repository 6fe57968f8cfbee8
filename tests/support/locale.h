#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

/// Runs `check` in a process of its own that is started with `locale`, since a process never changes its code pages.
/// To be called once in a test, at its start.
inline void check_in_locale(char const * locale, void (*check)()) {
    char const * const set = std::getenv("LC_ALL");
    std::string const before = set ? set : "";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    setenv("LC_ALL", locale, 1);
    EXPECT_EXIT((check(), std::_Exit(testing::Test::HasFailure())), testing::ExitedWithCode(0), "");
    setenv("LC_ALL", before.c_str(), 1);
}
