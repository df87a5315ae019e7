#include "base/color_metrics.h"

#include "support/printing/printing.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace lumetry {
namespace {

constexpr Color black = {0, 0, 0, 1};

TEST(HexString, RoundsEachComponent) {
    using Case = std::pair<Color, std::string>;
    for (const auto& [color, expected] : {
             Case{{1, 0, 0, 0.2}, "#FF0000"},
             Case{{0.4 / 255, 0.6 / 255, 254.4 / 255, 1}, "#0001FE"},
             Case{accentPink, "#FF3D8A"},
         }) {
        EXPECT_EQ(hexString(color), expected);
    }
}

TEST(Contrast, FollowsWcag) {
    struct Case {
        Color a;
        Color b;
        double ratio;
    };
    const auto grey = [](int level) {
        return Color{level / 255.0, level / 255.0, level / 255.0, 1};
    };
    for (const auto& [a, b, ratio] : {
             Case{black, white, 21},
             Case{accentPink, accentPink, 1},
             Case{grey(0x76), white, 4.54}, // the lightest grey for text on white (AA)
             Case{{1, 0, 0, 1}, white, 4.00},
             Case{{0, 0, 1, 1}, white, 8.59},
             Case{{0, 1, 0, 1}, black, 15.30},
             Case{black.withAlpha(0), white, 21},
         }) {
        EXPECT_NEAR(wcagContrast(a, b), ratio, 0.005);
        EXPECT_EQ(wcagContrast(a, b), wcagContrast(b, a));
    }
}

TEST(Luminance, IsLinearUpToItsThreshold) {
    constexpr double threshold = 0.03928;
    EXPECT_DOUBLE_EQ(lum({threshold, threshold, threshold, 1}), threshold / 12.92);
    // The curve beyond it does not quite continue the line.
    EXPECT_NEAR(lum({0.039281, 0.039281, 0.039281, 1}), 0.00303957, 1e-8);
    EXPECT_NEAR(lum({0.04, 0.04, 0.04, 1}), 0.00309550, 1e-8);
}

} // namespace
} // namespace lumetry
