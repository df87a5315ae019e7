#include "platform/display_list.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumetry {
namespace {

const DrawCommand a = FillRoundedRect{{0, 0, 10, 10}, 4, white};
const DrawCommand b = FillRoundedRect{{20, 0, 10, 10}, 4, white};
const DrawCommand c = FillRoundedRect{{40, 0, 10, 10}, 4, white};
const DrawCommand otherColor = FillRoundedRect{{20, 0, 10, 10}, 4, accentPink};

TEST(ChangedAreas, CoverWhatDiffersOnly) {
    struct Case {
        const char* name;
        DisplayList before;
        DisplayList after;
        std::vector<Rect> changed;
    };
    for (const auto& [name, before, after, changed] : {
             Case{"the same", {a, b, c}, {a, b, c}, {}},
             Case{"nothing at all", {}, {}, {}},
             Case{"first drawing", {}, {a}, {coverage(a)}},
             Case{"all gone", {a, b}, {}, {coverage(a), coverage(b)}},
             Case{"one replaced", {a, b, c}, {a, otherColor, c}, {coverage(b), coverage(b)}},
             Case{"one taken out", {a, b, c}, {a, c}, {coverage(b)}},
             Case{"one put in front", {b, c}, {a, b, c}, {coverage(a)}},
             Case{"one doubled", {a, b}, {a, a, b}, {coverage(a)}},
             Case{"order", {a, b}, {b, a}, {coverage(a), coverage(b), coverage(b), coverage(a)}},
         }) {
        EXPECT_EQ(changedAreas(before, after), changed) << name;
    }
}

TEST(Coverage, ReachesBeyondLinesAndSmoothedEdges) {
    EXPECT_EQ(coverage(FillEllipse{{10, 10, 6, 6}, white}), (Rect{9, 9, 8, 8}));
    EXPECT_EQ(coverage(StrokeRoundedRect{{10, 10, 20, 20}, 4, white, 2}), (Rect{8, 8, 24, 24}));
    EXPECT_EQ(coverage(StrokeEllipse{{10, 10, 6, 6}, white, 2}), (Rect{8, 8, 10, 10}));
    EXPECT_EQ(coverage(StrokeLine{{30, 10}, {10, 40}, white, 2, {}}), (Rect{8, 8, 24, 34}))
        << "whichever end comes first";
    EXPECT_EQ(coverage(StrokeLine{{10, 10}, {30, 10}, white, 1.5, {}}),
              (Rect{8.25, 8.25, 23.5, 3.5}))
        << "a level line has an area too";
    EXPECT_EQ(coverage(DrawText{"x", {10, 10, 7, 15}, {}, white}), (Rect{8, 8, 11, 19}));
}

} // namespace
} // namespace lumetry
