#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace lumetry {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(WholeNumber, RoundsHalvesAwayFromZero) {
    using Case = std::pair<double, std::string>;
    for (const auto& [value, expected] : {
             Case{0.5, "1"},
             Case{2.5, "3"},
             Case{-2.5, "-3"},
             Case{-0.4, "0"},
             Case{0.49999999999999994, "0"},
             Case{infinity, "inf"},
         }) {
        EXPECT_EQ(wholeNumber(value), expected);
    }
}

TEST(IntegerValue, DropsTheFractionAndWhatNoIntegerHolds) {
    EXPECT_EQ(integerValue(119.6), 119);
    EXPECT_EQ(integerValue(-2.5), -2);
    EXPECT_EQ(integerValue(std::nan("")), 0);
    EXPECT_GT(integerValue(infinity), 1LL << 62);
    EXPECT_LT(integerValue(-infinity), -(1LL << 62));
}

TEST(AspectString, KeepsTermsUpTo32) {
    using Case = std::pair<Size, std::string>; // expected: empty for none
    for (const auto& [size, expected] : {
             Case{{1920, 1080}, "16:9"},
             Case{{1366, 768}, "1.78:1"},
             Case{{32, 1}, "32:1"},
             Case{{33, 1}, "33.00:1"},
             Case{{1, 33}, "0.03:1"},
             Case{{99.6, 50.4}, "2:1"},
             Case{{100.4, 33.4}, "3.01:1"}, // not the 3.03 of the rounded sides
             Case{{0.5, 1}, "1:1"},
             Case{{0.49, 100}, ""},
             Case{{100, 0.49}, ""},
             Case{{std::nan(""), 5}, ""},
             Case{{1e300, 1e299}, "10.00:1"},
         }) {
        EXPECT_EQ(aspectString(size).value_or(""), expected) << size.width << " x " << size.height;
    }
}

} // namespace
} // namespace lumetry
