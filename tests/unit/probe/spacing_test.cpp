#include "probe/spacing.h"

#include "probe/ax_access.h"
#include "support/fake_platform/fake_accessibility.h"
#include "support/fake_platform/fake_windows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::nan("");

/// An element whose children have these frames.
class Family {
public:
    explicit Family(const std::vector<Rect>& frames) {
        std::vector<FakeElement*> children;
        children.reserve(frames.size());
        for (const Rect& frame : frames) {
            children.push_back(&accessibility.makeElement(1, "AXGroup").setFrame(frame));
        }
        parent.setChildren(children);
    }

    [[nodiscard]] std::string padding(const Rect& frame, bool guarded) {
        return axPadding(accessibility, parent.handle(), frame, guarded).value_or("");
    }
    [[nodiscard]] std::optional<CollectionGap> gap() {
        return collectionGap(accessibility, parent.handle());
    }

    FakeAccessibility accessibility;
    FakeElement& parent = accessibility.makeElement(1, "AXList");
};

TEST(Padding, IsTheSpaceAroundAllChildren) {
    constexpr Rect frame = {0, 0, 100, 100};
    constexpr Rect large = {0, 0, 300, 300};
    struct Case {
        const char* name;
        Rect frame;
        std::vector<Rect> children;
        std::string expected; ///< empty for none
        bool alsoGuarded = true;
    };
    for (const auto& [name, outer, children, expected, alsoGuarded] : {
             Case{"two values", {10, 10, 100, 32}, {{30, 18, 60, 16}}, "8px 20px"},
             Case{"one value", frame, {{12, 12, 76, 76}}, "12px"},
             Case{"four values", frame, {{12, 8, 76, 82}, {20, 20, 68, 9}}, "8px 12px 10px 12px"},
             Case{"level ones differ", frame, {{1, 5, 97, 90}}, "5px 2px 5px 1px"},
             Case{"halves away from zero", frame, {{0.5, 0.4, 98.1, 99.2}}, "0px 1px"},
             Case{"no space", frame, {frame}, ""},
             Case{"sticking out on the left", frame, {{-2, 5, 97, 90}}, "5px 5px 5px 0px"},
             Case{"64", large, {{64, 10, 226, 280}}, "10px 10px 10px 64px"},
             Case{"65", large, {{10, 65, 280, 225}}, "65px 10px 10px 10px", false},
             Case{"96", large, {{10, 10, 280, 194}}, "10px 10px 96px 10px", false},
             Case{"97", large, {{10, 10, 193, 280}}, ""},
             Case{"little of the frame covered", frame, {{30, 30, 40, 40}}, "30px", false},
             Case{"a fifth of it", frame, {{30, 25, 40, 50}}, "25px 30px"},
             Case{"flat", {0, 0, 100, 0.005}, {{25, 0, 50, 0.0025}}, "0px 25px", false},
             Case{"children without a size", frame, {{20, 20, 0, 10}, {20, 20, 10, -1}}, ""},
             Case{"one of them without", frame, {{0, 0, 0, 0}, {10, 10, 80, 80}}, "10px"},
             Case{"not a number", frame, {{10, 10, 80, 80}, {nan, 10, 80, 80}}, ""},
             Case{"without end", frame, {{10, 10, infinity, infinity}}, ""},
             Case{"frame that is none", {nan, 0, 100, 100}, {{10, 10, 80, 80}}, ""},
         }) {
        Family family(children);
        EXPECT_EQ(family.padding(outer, false), expected) << name;
        EXPECT_EQ(family.padding(outer, true), alsoGuarded ? expected : "") << name;
    }
}

/// Frames one below the other: heights and the spaces that follow them.
std::vector<Rect> column(const std::vector<double>& gaps, double height) {
    std::vector<Rect> frames = {{0, 0, 200, height}};
    for (const double gap : gaps) {
        frames.push_back({0, frames.back().maxY() + gap, 200, height});
    }
    return frames;
}

std::vector<Rect> turned(std::vector<Rect> frames) {
    for (Rect& frame : frames) {
        frame = {frame.y, frame.x, frame.height, frame.width};
    }
    return frames;
}

std::vector<Rect> grid(int columns, int rows) {
    std::vector<Rect> frames;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            frames.push_back({110.0 * column, 110.0 * row, 100, 100});
        }
    }
    return frames;
}

TEST(CollectionGap, IsTheTypicalSpaceOfRegularItems) {
    struct Case {
        const char* name;
        std::vector<Rect> children;
        std::optional<CollectionGap> expected;
    };
    const auto tall = CollectionGap{8, 3, 44, true};
    for (const auto& [name, children, expected] : {
             Case{"touching", column(std::vector<double>(9), 44), CollectionGap{0, 10, 44, true}},
             Case{"as irregular as its median allows", column({4, 20}, 30),
                  CollectionGap{20, 3, 30, true}},
             Case{"more irregular", column({4, 20.2}, 30), std::nullopt},
             Case{"small and near enough", column({0, 6}, 30), CollectionGap{6, 3, 30, true}},
             Case{"small and not", column({0, 6.1}, 30), std::nullopt},
             Case{"side by side", turned(column({8, 8}, 44)), CollectionGap{8, 3, 44, false}},
             Case{"in another order", {{0, 104, 9, 44}, {0, 52, 9, 44}, {0, 0, 9, 44}}, tall},
             Case{"grid", grid(3, 3), CollectionGap{10, 9, 100, true}},
             Case{"wide grid", grid(4, 2), CollectionGap{10, 8, 100, false}},
             Case{"halves away from zero", column({8.5, 8.5}, 30.5), CollectionGap{9, 3, 31, true}},
             Case{"upper one of two heights",
                  {{0, 0, 9, 20}, {0, 30, 9, 40}},
                  CollectionGap{10, 2, 40, true}},
             Case{"overlaps left out", {{0, 0, 9, 44}, {0, 40, 9, 44}, {0, 92, 9, 44}}, tall},
             Case{"jump left out", column({8, 200}, 44), tall},
             Case{"jump kept", column({199.5}, 44), CollectionGap{200, 2, 44, true}},
             Case{"nothing but jumps", column({200}, 44), std::nullopt},
             Case{"separators left out",
                  {{0, 0, 200, 44}, {0, 48, 1, 2}, {0, 50, 200, 1}, {0, 52, 200, 44}},
                  CollectionGap{8, 4, 44, true}},
             Case{"not a number", {{0, 0, 9, 44}, {0, 52, 9, 44}, {0, nan, 9, 44}}, std::nullopt},
             Case{"infinitely wide",
                  {{0, 0, 9, 44}, {0, 52, 9, 44}, {0, 104, infinity, 44}},
                  std::nullopt},
             Case{"infinitely high",
                  {{0, 0, 9, 44}, {0, 52, 9, 44}, {0, 104, 9, infinity}},
                  std::nullopt},
         }) {
        EXPECT_EQ(Family(children).gap(), expected) << name;
    }
}

TEST(CollectionGap, TakesWhatOverlapsByOnePixelForTouching) {
    Family rows({{0, 0, 9, 33.6}, {0, 32.8, 9, 33.6}, {0, 65.6, 9, 33.6}});
    EXPECT_EQ(rows.gap(), std::nullopt);
    FakeWindowServer screen;
    screen.allScreens = {{{0, 0, 800, 600}, {}, 1.25}, {{800, 0, 800, 600}, {}, 1}};
    EXPECT_EQ(collectionGap(rows.accessibility, rows.parent.handle(), frameRounding(screen)),
              (CollectionGap{0, 3, 34, true}));
    screen.allScreens.front().backingScaleFactor = 2;
    EXPECT_EQ(frameRounding(screen), 0);
}

TEST(Spacing, AsksNoMoreThanItNeedsAndAllAtOnce) {
    struct Case {
        std::size_t children;
        int paddingReads;
        int gapReads;
    };
    for (const auto& [children, paddingReads, gapReads] : {
             Case{1, 1 + 2, 1},
             Case{40, 1 + 2 * 40, 1 + 2 * 40},
             Case{41, 1, 1 + 2 * 41},
             Case{300, 1, 1 + 2 * 60},
             Case{301, 1, 1},
         }) {
        auto frames = column(std::vector<double>(children), 20);
        frames.pop_back();
        Family forPadding(frames);
        Family forGap(frames);
        const auto paddingScope = forPadding.accessibility.keepReplies();
        const auto gapScope = forGap.accessibility.keepReplies();
        static_cast<void>(forPadding.padding({-5, -5, 210, 1e6}, false));
        const auto gap = forGap.gap();
        EXPECT_EQ(forPadding.accessibility.totalReads(), paddingReads) << children;
        EXPECT_EQ(forGap.accessibility.totalReads(), gapReads) << children;
        EXPECT_EQ(forPadding.accessibility.prefetches, paddingReads > 1 ? 1 : 0) << children;
        EXPECT_EQ(forGap.accessibility.prefetches, gapReads > 1 ? 1 : 0) << children;
        EXPECT_EQ(gap ? gap->count : 0, gapReads > 1 ? children : 0);
    }
}

} // namespace
} // namespace lumetry
