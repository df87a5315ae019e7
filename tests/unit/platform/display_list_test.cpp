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

} // namespace
} // namespace lumetry
