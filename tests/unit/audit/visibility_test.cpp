#include "audit/visibility.h"

#include <gtest/gtest.h>

#include <ostream>

namespace lumetry {
namespace {

struct Case {
    const char* name;
    Rect frame;
    Rect clip;
    Presence presence;

    friend std::ostream& operator<<(std::ostream& out, const Case& one) { return out << one.name; }
};

class VisibilityOf : public testing::TestWithParam<Case> {};

constexpr Rect window = {0, 0, 1000, 400};
constexpr Rect screen = {0, 0, 800, 600};

TEST_P(VisibilityOf, AnElement) {
    const Visibility visibility(window, {{100, 0, 100, 400}, {200, 0, 50, 400}}, {screen});
    EXPECT_EQ(visibility.presenceOf(GetParam().frame, GetParam().clip), GetParam().presence);
}

using enum Presence;

INSTANTIATE_TEST_SUITE_P(
    Cases, VisibilityOf,
    testing::Values(Case{"InTheOpen", {300, 10, 100, 20}, window, whole},
                    Case{"ReachingBeyondByARoundedPoint", {300, -1, 100, 20}, window, whole},
                    Case{"ScrolledHalfAway", {300, 10, 100, 20}, {0, 20, 1000, 380}, partlyClipped},
                    Case{"ScrolledAway", {300, 10, 100, 20}, {0, 40, 1000, 360}, clipped},
                    Case{"TouchingTheClip", {300, 10, 100, 20}, {0, 29.5, 1000, 360}, clipped},
                    Case{"OfOneLine", {300, 10, 100, 1}, window, whole},
                    Case{"BelowOneWindow", {110, 10, 50, 20}, window, covered},
                    Case{"BelowTwoWindowsTogether", {150, 10, 90, 20}, window, covered},
                    Case{"HalfBelowAWindow", {220, 10, 60, 20}, window, partlyCovered},
                    Case{"BesideAWindow", {250, 10, 60, 20}, window, whole},
                    Case{"HalfBeyondTheScreen", {750, 10, 100, 20}, window, partlyOffScreen},
                    Case{"BeyondTheScreen", {850, 10, 100, 20}, window, offScreen}),
    [](const auto& test) { return test.param.name; });

TEST(Subtract, LeavesPiecesThatDoNotOverlap) {
    const auto pieces = subtract({0, 0, 100, 100}, {{20, 20, 10, 10}, {25, 25, 50, 10}});
    double area = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        area += pieces[i].width * pieces[i].height;
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_TRUE(intersect(pieces[i], pieces[j]).isEmpty());
        }
    }
    EXPECT_EQ(area, 10000 - 100 - 500 + 25);
}

} // namespace
} // namespace lumetry
