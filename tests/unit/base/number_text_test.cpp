#include "base/number_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

namespace lumetry {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(WholeNumber, RoundsHalvesAwayFromZero) {
    struct Case {
        double value;
        std::string expected;
    };
    for (const auto& [value, expected] : {
             Case{119.6, "120"},
             Case{31.4, "31"},
             Case{0.5, "1"},
             Case{2.5, "3"},
             Case{-2.5, "-3"},
             Case{-0.4, "0"},
             Case{0.49999999999999994, "0"},
             Case{1e18, "1000000000000000000"},
             Case{infinity, "inf"},
         }) {
        EXPECT_EQ(wholeNumber(value), expected);
    }
    EXPECT_EQ(wholeNumber(std::numeric_limits<double>::max()).size(), 309U);
}

TEST(AspectString, KeepsTermsUpTo32) {
    struct Case {
        Size size;
        std::string expected; ///< empty for none
    };
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
             Case{{100, -5}, ""},
             Case{{std::nan(""), 5}, ""},
             Case{{1e300, 1e299}, "10.00:1"},
         }) {
        EXPECT_EQ(aspectString(size).value_or(""), expected) << size.width << " x " << size.height;
    }
}

TEST(AspectString, KeepsThePointInALanguageWithACommaForIt) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) {
        GTEST_SKIP() << "generate the locale de_DE.UTF-8 to run this case";
    }
    const auto ratio = aspectString({1366, 768});
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_EQ(ratio, "1.78:1");
}

} // namespace
} // namespace lumetry
