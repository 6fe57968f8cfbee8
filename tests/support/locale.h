#pragma once

#include "tests/support/system.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace support {

/// Ends a process of `check_in_locale`, which prints nothing by itself.
[[noreturn]] inline void end_check() {
    testing::TestResult const & result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) {
        auto const & part = result.GetTestPartResult(i);
        std::cerr << part.file_name() << ':' << part.line_number() << ": " << part.message() << '\n';
    }
    std::exit(result.Failed());
}

} // namespace support

/// Runs `check` in a process of its own that is started with `locale`, since a process never changes its code pages.
/// To be called before anything else in a test.
inline void check_in_locale(char const * locale, void (*check)()) {
    if (!support::starts_in_locales()) {
        if (!support::is_in_locale(locale))
            GTEST_SKIP() << "the system's ANSI page is not that of " << locale;
        check();
        return;
    }
    char const * const set = std::getenv("LC_ALL");
    std::string const before = set ? set : "";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    support::set_variable("LC_ALL", locale);
    EXPECT_EXIT((check(), support::end_check()), testing::ExitedWithCode(0), "");
    support::set_variable("LC_ALL", before.c_str());
}
