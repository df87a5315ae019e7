#include "base/color_difference.h"

#include <gtest/gtest.h>

#include <array>

namespace lumetry {
namespace {

struct Pair {
    Lab first;
    Lab second;
    double difference;
};

/// Out of the data that was published with the formula, those that go through its branches.
TEST(ColorDifference, IsThatOfThePublishedPairs) {
    const std::array pairs = {
        Pair{{50, 2.6772, -79.7751}, {50, 0, -82.7485}, 2.0425},
        Pair{{50, -1.3802, -84.2814}, {50, 0, -82.7485}, 1.0000},
        Pair{{50, 0, 0}, {50, -1, 2}, 2.3669},
        Pair{{50, 2.49, -0.001}, {50, -2.49, 0.0009}, 7.1792},
        Pair{{50, 2.49, -0.001}, {50, -2.49, 0.0011}, 7.2195},
        Pair{{50, -0.001, 2.49}, {50, 0.0011, -2.49}, 4.7461},
        Pair{{50, 2.5, 0}, {73, 25, -18}, 27.1492},
        Pair{{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
        Pair{{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
        Pair{{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
    };
    for (const Pair& pair : pairs) {
        EXPECT_NEAR(colorDifference(pair.first, pair.second), pair.difference, 5e-5);
        EXPECT_NEAR(colorDifference(pair.second, pair.first), pair.difference, 5e-5);
    }
}

TEST(ColorDifference, TakesColoursOfScreens) {
    EXPECT_EQ(colorDifference(Color{1, 0, 0, 1}, Color{1, 0, 0, 0.5}), 0);
    EXPECT_NEAR(colorDifference(Color{0, 0, 0, 1}, Color{1, 1, 1, 1}), 100, 0.01);
    const Lab red = labOf({1, 0, 0, 1});
    EXPECT_NEAR(red.lightness, 53.24, 0.01);
    EXPECT_NEAR(red.a, 80.09, 0.01);
    EXPECT_NEAR(red.b, 67.20, 0.01);
}

} // namespace
} // namespace lumetry
