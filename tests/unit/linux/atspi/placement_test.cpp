#include "platform/linux/atspi/tree/placement.h"
#include "platform/linux/atspi/tree/whole_points.h"

#include "atspi_test.h"

namespace lumetry::test {
namespace {

using atspi::scaleBetween;

TEST(Placement, ScaleIsToldByAWindowThatIsReportedSmaller) {
    struct Case {
        std::string name;
        IntRect reported;
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

TEST(Placement, BeginsWhereApplicationsDrawWhereTheyCountFromTheirWindows) {
    // A window of KWin's: what is drawn, shadow included; the window; without its title bar.
    constexpr Rect surface = {74, 27, 692, 464};
    constexpr Rect frame = {100, 50, 640, 400};
    constexpr Rect client = {100, 76, 640, 374};
    const auto originOf = [&](const IntRect& reported) {
        return atspi::placementOnSurface(reported, client, frame, surface).origin;
    };
    EXPECT_EQ(originOf({26, 23, 640, 400}), (Point{74, 27})); // counts from its shadow's corner
    EXPECT_EQ(originOf({0, 0, 692, 464}), (Point{74, 27}));   // is as large as all it draws
    EXPECT_EQ(originOf({0, 0, 640, 400}), (Point{100, 50}));  // knows of no shadow
    EXPECT_EQ(originOf({0, 0, 640, 374}), (Point{100, 76}));  // knows of no title bar
}

TEST(Placement, FindsTheWholePointsThatWereRounded) {
    using atspi::onWholePoints;
    using atspi::Rounding;
    struct Case {
        std::string name;
        Rect reported;
        Rounding rounding;
        double scale;
        Rect points; ///< from the window's origin
    };
    constexpr Point origin = {7, 3};
    for (const auto& [name, reported, rounding, scale, points] : {
             // As Chromium and Firefox tell them of the same page.
             Case{"outward", {758, 24, 152, 52}, Rounding::outward, 1.25, {601, 17, 121, 41}},
             Case{"nearest", {758, 24, 152, 52}, Rounding::nearest, 1.25, {601, 17, 121, 41}},
             Case{"an exact edge", {19, 18, 375, 10}, Rounding::outward, 1.25, {10, 12, 299, 8}},
             Case{"none below", {7, 157, 188, 29}, Rounding::outward, 1.25, {0, 123.2, 150, 23.2}},
             Case{"a hairline", {8, 4, 1, 1}, Rounding::nearest, 1.25, {0.8, 0.8, 0.8, 0.8}},
             Case{"whole pixels", {9, 4, 3, 5}, Rounding::outward, 2, {1, 0.5, 1.5, 2.5}},
             Case{"not rounded", {8, 4, 152, 52}, Rounding::none, 1.25, {0.8, 0.8, 121.6, 41.6}},
         }) {
        const Rect found = onWholePoints(reported, rounding, origin, scale);
        EXPECT_NEAR((found.x - origin.x) / scale, points.x, 1e-9) << name;
        EXPECT_NEAR((found.y - origin.y) / scale, points.y, 1e-9) << name;
        EXPECT_NEAR(found.width / scale, points.width, 1e-9) << name;
        EXPECT_NEAR(found.height / scale, points.height, 1e-9) << name;
    }
}

// Programs and the desktop count in units of different sizes.
TEST_F(AtspiTest, EveryApplicationIsHitAndMeasuredInPoints) {
    struct Case {
        const char* toolkit;
        std::array<std::int32_t, 4> window;
        std::array<std::int32_t, 4> button;
        Point asked; ///< where the button is hit, as the application takes it
    };
    // Of the button's 60 × 20 points at 100, 50, on a screen of twice the density.
    for (const Case& each : {
             Case{"gtk", {0, 0, 400, 300}, {100, 50, 60, 20}, {105, 55}},
             Case{"Qt", {0, 0, 800, 600}, {200, 100, 120, 40}, {210, 110}},
             Case{"Gecko", {0, 0, 400, 300}, {100, 50, 60, 20}, {210, 110}},
             // Its windows are reported in scaled units, its pages in pixels.
             Case{"Chromium", {0, 0, 400, 300}, {200, 100, 120, 40}, {210, 110}},
         }) {
        SCOPED_TRACE(each.toolkit);
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        windows.windows.clear();
        windows.space.scale = 2;
        ScriptedObject window = object("window", each.window, {"/button"});
        Point asked;
        window.childAt = [&asked](int x, int y) {
            asked = {static_cast<double>(x), static_cast<double>(y)};
            return "/button";
        };
        auto& application =
            start(windowWith(window, {{"/button", object("button", each.button)}}, each.toolkit));
        windows.windows = {{1, application.pid(), {0, 0, 400, 300}, false, {0, 0, 400, 300}}};
        const auto button = hit(application, 105, 55);
        ASSERT_TRUE(button);
        EXPECT_EQ(button->copyAttributeValue("AXPosition")->as<Point>(), (Point{100, 50}));
        EXPECT_EQ(button->copyAttributeValue("AXSize")->as<Size>(), (Size{60, 20}));
    }
}

TEST_F(AtspiTest, FramesOfJavaAreWhereTheirWindowsAre) {
    ScriptedObject frame = object("frame", {-1, -1, -1, -1}, {"/rootPane"});
    ScriptedObject pane = object("pane", {50, 40, 200, 100}, {"/button"});
    pane.childAt = [](int, int) { return "/rootPane"; };
    auto& application = start(
        windowWith(frame, {{"/rootPane", pane}, {"/button", object("Save", {60, 50, 30, 20})}},
                   "J2SE-access-bridge"));
    windows.windows = {{1, application.pid(), {100, 60, 402, 224}, false, {101, 81, 400, 200}}};
    const auto button = hit(application, 130, 110);
    ASSERT_TRUE(button);
    EXPECT_EQ(button->copyAttributeValue("AXTitle")->as<std::string>(), "Save");
    EXPECT_EQ(button->copyAttributeValue("AXPosition")->as<Point>(), (Point{121, 101}));
    EXPECT_EQ(button->copyAttributeValue("AXSize")->as<Size>(), (Size{60, 40}));
    const auto title = hit(application, 130, 65);
    ASSERT_TRUE(title);
    EXPECT_EQ(title->copyAttributeValue("AXSize")->as<Size>(), (Size{402, 224}));
}

TEST_F(AtspiTest, WhatLibreOfficeHasBelowItsMenuBarIsFoundThere) {
    ScriptedObject frame = object("frame", {0, 0, 800, 600}, {"/content"});
    ScriptedObject content = object("content", {0, 20, 800, 580}, {"/bar", "/panel"});
    // It begins 25 pixels further down than it says.
    ScriptedObject pane = object("pane", {0, 20, 800, 555}, {"/paragraph"});
    auto tree = windowWith(frame,
                           {{"/content", content},
                            {"/bar", object("bar", {0, 20, 800, 25}, {"/menu"})},
                            {"/menu", object("File", {0, 20, 60, 25})},
                            {"/panel", object("panel", {0, 45, 800, 555}, {"/pane"})},
                            {"/pane", pane},
                            {"/paragraph", object("Text", {100, 200, 300, 18})}},
                           "gtk");
    tree[rootPath].name = "soffice";
    tree["/dialog"] = object("dialog", {900, 100, 200, 100}, {"/close"});
    tree["/close"] = object("Close", {910, 110, 60, 20});
    tree["/dialog"].lenientAboutText = tree["/close"].lenientAboutText = true;
    tree[rootPath].children.push_back({"", "/dialog"});
    auto& application = start(std::move(tree));
    windows.windows = {{1, application.pid(), {0, 0, 800, 600}, false, {0, 20, 800, 580}},
                       {2, application.pid(), {900, 100, 200, 100}, false, {900, 100, 200, 100}}};
    for (int round = 0; round < 2; ++round) {
        const auto paragraph = hit(application, 110, 230);
        ASSERT_TRUE(paragraph);
        EXPECT_EQ(paragraph->copyAttributeValue("AXTitle")->as<std::string>(), "Text");
        EXPECT_EQ(paragraph->copyAttributeValue("AXPosition")->as<Point>(), (Point{100, 225}));
        const auto close = hit(application, 915, 115);
        ASSERT_TRUE(close);
        EXPECT_EQ(close->copyAttributeValue("AXPosition")->as<Point>(), (Point{910, 110}));
        const auto menu = hit(application, 10, 30);
        ASSERT_TRUE(menu);
        EXPECT_EQ(menu->copyAttributeValue("AXPosition")->as<Point>(), (Point{0, 20}));
    }
}

} // namespace
} // namespace lumetry::test
