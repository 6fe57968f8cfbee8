#include "nio/blocks.h"

#include <gtest/gtest.h>

namespace {
TEST(Blocks, Fill) {
    nio::infinite_output out;
    nio::fill(out, 5, 'x', 2);
    EXPECT_EQ(out.tell(), 5u);
}
} // namespace
