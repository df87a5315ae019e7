#include "platform/linux/x11/windows/screens.h"

#include <gmock/gmock.h>

#include <cmath>
#include <optional>
#include <vector>

namespace lumetry::x11 {
namespace {

constexpr double everywhere = 0x7FFF;

Strut strut(const Margins& depth, double start = 0, double end = everywhere) {
    return {depth, {start, start, start, start}, {end, end, end, end}};
}

TEST(ScreenLayout, PanelsTakeFromTheScreenTheyAreOn) {
    // Side by side, the right one less high and hanging from the same top.
    const Rect root = {0, 0, 2000, 1000};
    const Rect left = {0, 0, 1200, 1000};
    const Rect right = {1200, 0, 800, 600};
    struct PanelCase {
        const char* name;
        std::vector<Strut> struts;
        Rect left;
        Rect right;
    };
    const std::vector<PanelCase> cases = {
        {"none", {}, left, right},
        {"a bar over both", {strut({0, 0, 30, 0})}, {0, 30, 1200, 970}, {1200, 30, 800, 570}},
        {"a bar over the left one", {strut({0, 0, 30, 0}, 0, 1199)}, {0, 30, 1200, 970}, right},
        {"a bar over the right one",
         {strut({0, 0, 30, 0}, 1200, 1999)},
         left,
         {1200, 30, 800, 570}},
        {"a dock at the left", {strut({64, 0, 0, 0})}, {64, 0, 1136, 1000}, right},
        {"a dock at the left edge of the right one",
         {strut({1264, 0, 0, 0}, 0, 599)},
         left,
         {1264, 0, 736, 600}},
        {"at the bottom of the higher one",
         {strut({0, 0, 0, 40}, 0, 1199)},
         {0, 0, 1200, 960},
         right},
        {"at the bottom of the lower one, counted from the root's",
         {strut({0, 0, 0, 440}, 1200, 1999)},
         left,
         {1200, 0, 800, 560}},
        {"two at the top",
         {strut({0, 0, 30, 0}, 0, 1199), strut({0, 0, 50, 0}, 0, 1199)},
         {0, 50, 1200, 950},
         right},
        {"all around",
         {strut({10, 0, 0, 0}), strut({0, 20, 0, 0}), strut({0, 0, 30, 0}),
          strut({0, 0, 0, 40}, 0, 1199)},
         {10, 30, 1190, 930},
         {1200, 30, 780, 570}},
        {"nonsense", {strut({0, 0, 5000, 0})}, left, right},
        {"more than there is",
         {strut({700, 0, 0, 0}), strut({0, 1400, 0, 0})},
         left,
         {1200, 0, 800, 600}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(withoutStruts(left, root, one.struts), one.left) << one.name;
        EXPECT_EQ(withoutStruts(right, root, one.struts), one.right) << one.name;
    }
}

TEST(ScreenLayout, TheWorkAreaCountsOnlyForOneScreenWithoutPanels) {
    const Rect workArea = {0, 25, 1000, 775};
    const ScreenLayout one = {{0, 0, 1000, 800}, {{0, 0, 1000, 800}}};
    const ScreenLayout two = {{0, 0, 1000, 800}, {{0, 0, 500, 800}, {500, 0, 500, 800}}};
    const std::vector<Strut> panel = {strut({0, 0, 0, 10})};
    EXPECT_EQ(describeScreens(one, {}, workArea).front().visibleFrame, (Rect{0, 0, 1000, 775}));
    EXPECT_EQ(describeScreens(one, panel, workArea).front().visibleFrame, (Rect{0, 10, 1000, 790}));
    EXPECT_EQ(describeScreens(two, {}, workArea).front().visibleFrame, (Rect{0, 0, 500, 800}));
    EXPECT_EQ(describeScreens(one, {}, Rect{}).front().visibleFrame, (Rect{0, 0, 1000, 800}));
}

TEST(ScreenLayout, CountsPointsFromThePrimaryScreen) {
    // One above the other, the lower one primary.
    const ScreenLayout layout = {
        {0, 0, 1920, 2160}, {{0, 1080, 1920, 1080}, {0, 0, 1920, 1080}}, 1.5};
    const auto screens = describeScreens(layout, {}, std::nullopt);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1280, 720}));
    EXPECT_EQ(screens[1].frame, (Rect{0, 720, 1280, 720}));
    EXPECT_EQ(screens[1].backingScaleFactor, 1.5);
    const Rect button = {150, 60, 45, 30};
    EXPECT_EQ(layout.space().toAccessibility(button), (Rect{100, -680, 30, 20}));
    EXPECT_EQ(layout.toScreenSpace(button), (Rect{100, 1380, 30, 20}));
    // Pixels come back as they were, whatever the scale.
    for (const double scale : {1.1, 1.25, 1.75, 3.0}) {
        const ScreenLayout any = {layout.root, layout.screens, scale};
        for (double edge = 1; edge < 1920; edge += 7) {
            const Rect rect = {edge, edge / 2 - 0.5, 1921 - edge, 13};
            const Rect whole = {rect.x, std::floor(rect.y), rect.width, rect.height};
            EXPECT_EQ(any.fromScreenSpace(any.toScreenSpace(whole)), whole) << scale;
        }
    }
}

} // namespace
} // namespace lumetry::x11
