#include "base/token.h"

#include <gtest/gtest.h>

#include <utility>

namespace lumetry {
namespace {

TEST(Token, ReleasesOnceWhereverItWasMoved) {
    int one = 0;
    int two = 0;
    {
        Token first([&] { ++one; });
        Token moved(std::move(first));
        EXPECT_TRUE(moved);
        moved = Token([&] { ++two; });
        EXPECT_EQ(one, 1) << "what it held before is taken away";
        Token& itself = moved;
        moved = std::move(itself);
        EXPECT_EQ(two, 0);
        moved.reset();
        EXPECT_FALSE(moved);
    }
    EXPECT_EQ(one + two, 2);
    bool later = false;
    {
        const Token scope([&] { later = true; });
    }
    EXPECT_TRUE(later);
}

} // namespace
} // namespace lumetry
