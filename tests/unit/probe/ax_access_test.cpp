#include "probe/ax_access.h"

#include "support/fake_platform/fake_desktop.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <vector>

namespace lumetry {
namespace {

TEST(AxAccess, AttributesOfAnotherKindCountAsAbsent) {
    FakeDesktop desktop;
    FakeElement& parent = desktop.accessibility.makeElement(1, "AXGroup");
    FakeElement& child = desktop.accessibility.makeElement(1, "AXButton");
    parent.setChildren({&child});
    EXPECT_EQ(axString(child.handle(), "AXRole"), "AXButton");
    EXPECT_EQ(axParent(child.handle()), parent.handle());
    EXPECT_EQ(axChildren(parent.handle()), std::vector{child.handle()});

    child.set("AXRole", std::int64_t{3})
        .set("AXParent", "group")
        .set("AXChildren", parent.handle());
    EXPECT_EQ(axString(child.handle(), "AXRole"), std::nullopt);
    EXPECT_EQ(axString(child.handle(), "AXTitle"), std::nullopt);
    EXPECT_EQ(axParent(child.handle()), std::nullopt);
    EXPECT_EQ(axChildren(child.handle()), std::nullopt);
}

TEST(AxAccess, FrameNeedsAPlaceAndAnArea) {
    struct Case {
        const char* name;
        std::optional<AXValue> position;
        std::optional<AXValue> size;
        std::optional<Rect> frame;
    };
    const Point place = {-300, -20};
    for (const auto& [name, position, size, frame] : {
             Case{"small, left of the primary display", place, Size{0.5, 0.25},
                  Rect{-300, -20, 0.5, 0.25}},
             Case{"no width", place, Size{0, 12}, {}},
             Case{"no height", place, Size{12, 0}, {}},
             Case{"width that is no number", place, Size{std::nan(""), 12}, {}},
             Case{"no position", {}, Size{12, 10}, {}},
             Case{"position in place of the size", place, place, {}},
         }) {
        FakeDesktop desktop;
        FakeElement& element = desktop.accessibility.makeElement(1, "AXGroup");
        if (position) {
            element.set("AXPosition", *position);
        }
        if (size) {
            element.set("AXSize", *size);
        }
        EXPECT_EQ(axFrame(element.handle()), frame) << name;
    }
}

TEST(BundleID, FallsBackToTheProcessNumber) {
    FakeDesktop desktop;
    desktop.launch(6, "tool", "com.example.tool");
    EXPECT_EQ(bundleID(desktop.applications, 6), "com.example.tool");
    desktop.applications.running[6].bundleIdentifier.reset();
    EXPECT_EQ(bundleID(desktop.applications, 6), "pid:6");
    EXPECT_EQ(bundleID(desktop.applications, 4312), "pid:4312");
}

TEST(PrimaryDisplayHeight, IsThatOfTheScreenAtTheOriginElseTheFirst) {
    FakeWindowServer server;
    EXPECT_EQ(primaryDisplayHeight(server), 0);
    server.allScreens = {{{0, 1080, 1600, 1200}, {}}, {{0.5, 0, 1920, 720}, {}}};
    EXPECT_EQ(primaryDisplayHeight(server), 1200);
    server.allScreens.push_back({{0, 0, 1920, 1080}, {}});
    EXPECT_EQ(primaryDisplayHeight(server), 1080);
}

} // namespace
} // namespace lumetry
