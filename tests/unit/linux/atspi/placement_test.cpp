#include "platform/linux/atspi/placement.h"

#include "atspi_test.h"

namespace lumetry::test {
namespace {

using atspi::Extents;
using atspi::scaleBetween;

TEST(Placement, ScaleIsToldByAWindowThatIsReportedSmaller) {
    struct Case {
        std::string name;
        Extents reported;
        Rect bounds;
        double expected;
    };
    for (const auto& [name, reported, bounds, expected] : {
             Case{"the same", {100, 50, 640, 400}, {100, 50, 640, 400}, 1},
             Case{"with decorations", {101, 70, 640, 400}, {100, 50, 642, 421}, 1},
             Case{"with a shadow", {74, 30, 692, 460}, {100, 50, 640, 400}, 1},
             Case{"twice", {50, 25, 320, 200}, {100, 50, 640, 400}, 2},
             Case{"twice with decorations", {51, 35, 320, 200}, {100, 50, 644, 422}, 2},
             Case{"one and a half", {100, 40, 400, 300}, {150, 60, 600, 450}, 1.5},
             Case{"another, smaller window", {300, 200, 320, 200}, {100, 50, 640, 400}, 1},
             Case{"no size", {0, 0, 0, 0}, {0, 0, 640, 400}, 1},
             Case{"a sliver", {0, 0, 1, 1}, {0, 0, 640, 400}, 1},
         }) {
        EXPECT_EQ(scaleBetween(reported, bounds), expected) << name;
    }
}

TEST_F(AtspiTest, ScaledApplicationsAreHitAndMeasuredInPixels) {
    const ScriptedTree tree = windowWith(object("window", {0, 0, 400, 300}, {"/button"}),
                                         {{"/button", object("button", {100, 50, 60, 20})}});
    auto& application = start(tree);
    showWindow(application);
    EXPECT_EQ(titleAt(application, 210, 110), "button");
    EXPECT_EQ(titleAt(application, 190, 110), "window");
    const auto button = hit(application, 210, 110);
    ASSERT_TRUE(button);
    EXPECT_EQ(button->copyAttributeValue("AXPosition")->as<Point>(), (Point{200, 100}));
    EXPECT_EQ(button->copyAttributeValue("AXSize")->as<Size>(), (Size{120, 40}));
}

// Its windows are reported in scaled units, its pages in pixels.
TEST_F(AtspiTest, ScaledChromiumIsHitInPixels) {
    const ScriptedTree tree =
        windowWith(object("window", {0, 0, 400, 300}, {"/button"}),
                   {{"/button", object("button", {200, 100, 120, 40})}}, "Chromium");
    auto& application = start(tree);
    showWindow(application);
    const auto button = hit(application, 210, 110);
    ASSERT_TRUE(button);
    EXPECT_EQ(button->copyAttributeValue("AXSize")->as<Size>(), (Size{120, 40}));
    const auto window = hit(application, 790, 590);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->copyAttributeValue("AXSize")->as<Size>(), (Size{800, 600}));
}

} // namespace
} // namespace lumetry::test
