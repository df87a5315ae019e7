#include "inspected_desktop.h"

#include "rig/desktop_windows.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <string>
#include <thread>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr const char* factory = "gtk3-widget-factory";

DesktopOptions optionsWith(bool compositor) {
    DesktopOptions options;
    options.compositor = compositor;
    return options;
}

/// Whether what is there, in pixels, is outlined, or comes to be: the compositing manager shows
/// what was painted a moment later.
testing::AssertionResult outlines(const InspectedDesktop& inspected, const Rect& place) {
    const auto problem = [&] {
        return outlineProblem(screenshot(inspected.desktop.server()), place);
    };
    return waitUntil([&] { return problem().empty(); }) ? testing::AssertionSuccess()
                                                        : testing::AssertionFailure() << problem();
}

/// With a compositing manager the overlay is translucent, without one it is shaped.
class OverWidgetFactory : public testing::TestWithParam<bool> {
protected:
    InspectedDesktop inspected{optionsWith(GetParam())};
    ChildProcess application = inspected.startWidgetFactory();
    ChildProcess lumetry = inspected.startLumetry();

    PrivateDesktop& desktop() { return inspected.desktop; }

    [[nodiscard]] Accessible element(const std::string& role, const std::string& name) const {
        return inspected.tree.waitFor(factory, role, name);
    }
    void click(const Accessible& element) {
        const Rect place = element.extents().value_or(Rect());
        desktop().input().glidePointer(static_cast<int>(place.midX()),
                                       static_cast<int>(place.midY()));
        desktop().input().click();
    }
};

INSTANTIATE_TEST_SUITE_P(Compositing, OverWidgetFactory, testing::Values(true, false),
                         [](const auto& test) { return test.param ? "With" : "Without"; });

TEST_P(OverWidgetFactory, OutlinesWhatIsUnderThePointerAndNamesIt) {
    const struct {
        const char* role;
        const char* name;
        const char* header;
    } cases[] = {
        {"push button", "link button", "Button · link button"},
        {"check box", "checkbutton", "CheckBox · checkbutton"},
        {"radio button", "Page 2", "RadioButton · Page 2"},
        {"label", "Groove", "StaticText · Groove"},
    };
    for (const auto& [role, name, header] : cases) {
        SCOPED_TRACE(header);
        const auto hovered = element(role, name);
        const auto readout = inspected.hover(hovered, header);
        const Rect place = hovered.extents().value_or(Rect());
        EXPECT_EQ(readout.value("size"), sizeText(place));
        EXPECT_TRUE(readout.exitTag);
        EXPECT_TRUE(outlines(inspected, place));
    }
}

TEST_P(OverWidgetFactory, LetsAClickThroughToTheApplication) {
    const auto onFirstPage = element("check box", "checkbutton");
    inspected.hover(element("radio button", "Page 2"), "RadioButton · Page 2");
    desktop().input().click();
    EXPECT_TRUE(waitUntil([&] { return !onFirstPage.showing(); })) << "the click did not arrive";
    EXPECT_TRUE(lumetry.running());
}

TEST_P(OverWidgetFactory, FollowsADragWithAButtonHeld) {
    inspected.hover(element("check box", "checkbutton"), "CheckBox · checkbutton");
    desktop().input().pressButton(MouseButton::left);
    const auto next = element("push button", "link button");
    inspected.hover(next, "Button · link button");
    EXPECT_TRUE(outlines(inspected, next.extents().value_or(Rect())));
    desktop().input().releaseButton(MouseButton::left);
}

TEST_P(OverWidgetFactory, MeasuresWhatLiesOverTheWindow) {
    // A popover is drawn into the window, over elements that would answer, too.
    click(element("toggle button", "Menu"));
    inspected.hover(element("check box", "Dark Theme"), "CheckBox · Dark Theme");
}

TEST_P(OverWidgetFactory, EscapeEndsItAndStillReachesTheApplication) {
    // An open drop-down list, a window of its own, is closed by Escape.
    click(element("combo box", "Left"));
    const auto item = element("menu item", "Middle");
    inspected.hover(item, "MenuItem · Middle");
    desktop().input().typeKey(XK_Escape);
    EXPECT_TRUE(waitUntil([&] { return !inspected.overlay.window(); }));
    EXPECT_TRUE(waitUntil([&] { return !item.showing(); }));
    EXPECT_TRUE(lumetry.running());
    EXPECT_EQ(lumetry.standardError(), "");
}

TEST_P(OverWidgetFactory, MeasuresTheDistanceWhileAltIsHeld) {
    const auto first = element("radio button", "Page 2");
    const auto second = element("push button", "link button");
    inspected.hover(first, "RadioButton · Page 2");
    desktop().input().pressKey(XK_Alt_L);
    const auto a = first.extents();
    const auto b = second.extents();
    ASSERT_TRUE(a && b);
    desktop().input().glidePointer(static_cast<int>(b->midX()), static_cast<int>(b->midY()));
    const auto pixels = [](double distance) {
        return std::to_string(std::lround(distance)) + "px";
    };
    const std::vector<std::string> expected = {pixels(a->minX() - b->maxX()),
                                               pixels(b->minY() - a->maxY())};
    const auto readout = inspected.overlay.waitFor(
        "both distances", [&](const OverlayReadout& shown) { return shown.distances == expected; });
    EXPECT_EQ(readout.header, "");

    // Not so soon after the last sample that this one would be dropped.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    desktop().input().releaseKey(XK_Alt_L);
    EXPECT_NO_THROW((void)inspected.overlay.waitForHeader("Button · link button"));
}

TEST_P(OverWidgetFactory, MeasuresTheWindowInFront) {
    const auto button = element("push button", "link button");
    inspected.hover(button, "Button · link button");
    const auto extents = button.extents();
    ASSERT_TRUE(extents);
    const auto place = std::to_string(std::lround(extents->midX()) - 80);
    const auto clock = desktop().start(
        {"xclock", "-geometry",
         "160x160+" + place + "+" + std::to_string(std::lround(extents->midY()) - 80)});
    const auto front = waitForWindow(desktop().server(), hasTitle("xclock"));
    ASSERT_TRUE(front.bounds.contains({extents->midX() + 8, extents->midY()}));
    desktop().input().glidePointer(static_cast<int>(extents->midX()) + 8,
                                   static_cast<int>(extents->midY()));
    // A plain X11 program has no elements: nothing of the button behind it may be shown.
    EXPECT_NO_THROW(
        (void)inspected.overlay.waitFor("the window in front", [](const OverlayReadout& shown) {
            return shown.exitTag && shown.header.find("link button") == std::string::npos;
        }));
}

TEST(OverADenseScreen, OutlinesInPixelsWhatItMeasuresInPoints) {
    DesktopOptions options = optionsWith(true);
    options.width *= 2;
    options.height *= 2;
    options.scale = 2;
    InspectedDesktop inspected(options);
    const auto application =
        inspected.startWidgetFactory({{"GDK_SCALE", "2"}, {"GDK_DPI_SCALE", "0.5"}});
    const auto lumetry = inspected.startLumetry();
    // GTK tells places in its own units, of which each has as many pixels as a point.
    const auto points = inspected.tree.waitFor(factory, "check box", "checkbutton").extents();
    ASSERT_TRUE(points);
    const Rect pixels = {points->x * 2, points->y * 2, points->width * 2, points->height * 2};
    inspected.desktop.input().glidePointer(static_cast<int>(pixels.midX()),
                                           static_cast<int>(pixels.midY()));
    const auto readout = inspected.overlay.waitForHeader("CheckBox · checkbutton");
    EXPECT_EQ(readout.value("size"), sizeText(*points));
    EXPECT_TRUE(outlines(inspected, pixels));
}

TEST(OverAnotherDepth, OutlinesAndNamesAsEver) {
    for (const int depth : {16, 30}) {
        SCOPED_TRACE(depth);
        DesktopOptions options = optionsWith(true);
        options.depth = depth;
        options.windowManager = false; // the window stays where it is
        InspectedDesktop inspected(options);
        const auto application = inspected.desktop.start({factory});
        const auto lumetry = inspected.startLumetry();
        const auto button = inspected.tree.waitFor(factory, "push button", "link button");
        const auto readout = inspected.hover(button, "Button · link button");
        EXPECT_EQ(readout.value("fill").value_or("").substr(0, 6), "≈ #F");
        EXPECT_TRUE(outlines(inspected, button.extents().value_or(Rect())));
    }
}

} // namespace
} // namespace lumetry::desktop
