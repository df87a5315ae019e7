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
             Case{"left of the primary display", place, Size{12, 10}, Rect{-300, -20, 12, 10}},
             Case{"no width", place, Size{0, 12}, {}},
             Case{"negative height", place, Size{12, -1}, {}},
             Case{"width that is no number", place, Size{std::nan(""), 12}, {}},
             Case{"no size", place, {}, {}},
             Case{"no position", {}, Size{12, 10}, {}},
             Case{"size in place of the position", Size{1, 1}, Size{12, 10}, {}},
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
    desktop.launch(5, "Notes", "com.example.notes");
    desktop.launch(6, "tool", "");
    desktop.applications.running[6].bundleIdentifier.reset();
    EXPECT_EQ(bundleID(desktop.applications, 5), "com.example.notes");
    EXPECT_EQ(bundleID(desktop.applications, 6), "pid:6");
    EXPECT_EQ(bundleID(desktop.applications, 4312), "pid:4312");
}

TEST(PrimaryDisplayHeight, IsThatOfTheScreenAtTheOrigin) {
    struct Case {
        std::vector<Rect> screens;
        double height;
    };
    for (const auto& [screens, height] : {
             Case{{{0, 1080, 1600, 1200}, {0, 0, 1920, 1080}}, 1080},
             Case{{{0, 0, 1920, 1080}, {1920, 0, 1280, 720}}, 1080},
             Case{{{-1280, 0, 1280, 720}, {0.5, 0, 1920, 1080}}, 720},
             Case{{}, 0},
         }) {
        FakeWindowServer server;
        for (const Rect& frame : screens) {
            server.allScreens.push_back({frame, frame});
        }
        EXPECT_EQ(primaryDisplayHeight(server), height);
    }
}

} // namespace
} // namespace lumetry
