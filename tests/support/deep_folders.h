#pragma once

#include "socle/platform/folders.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <vector>

/// No more than `count` descriptors while this lives.
class few_descriptors {
public:
    explicit few_descriptors(rlim_t count) {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit const now{count, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &now);
    }
    few_descriptors(few_descriptors const &) = delete;
    few_descriptors & operator=(few_descriptors const &) = delete;
    ~few_descriptors() { setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
};

/// Makes folders in each other, all of one name.
inline void make_chain(scratch const & here, wide_string const & name, std::size_t depth) {
    std::vector<platform::open_folder> chain(depth + 1);
    ASSERT_TRUE(chain[0].open(here.path("")));
    for (std::size_t i = 0; i < depth; ++i)
        ASSERT_TRUE(CreateDirectoryW(chain[i], name) && chain[i + 1].open(chain[i], name));
    while (!chain.empty())
        chain.pop_back(); // the lowest first
}
