#include "inspected_desktop.h"

#include "rig/chromium.h"
#include "rig/desktop_windows.h"
#include "rig/firefox.h"

#include <gtest/gtest.h>

#include <string>

namespace lumetry::desktop {
namespace {

constexpr const char* page = R"(<!doctype html><meta charset="utf-8"><title>Prices</title>
<style>
  body { margin: 0; background: white; font: 16px sans-serif; }
  button, h1, input { position: absolute; margin: 0; box-sizing: border-box; }
  button { left: 200px; top: 150px; width: 160px; height: 40px; }
  h1 { left: 200px; top: 300px; width: 320px; height: 48px; line-height: 48px; }
</style>
<button>Buy now</button><h1>Prices</h1>)";

/// Moves the pointer over an element and checks what is said of it and where its outline is.
void expectReadout(InspectedDesktop& inspected, const Rect& place, const std::string& header,
                   const std::string& size) {
    SCOPED_TRACE(header + " " + size);
    // The tree is built while the pointer is being moved: a little to and fro, as a hand does.
    int wiggle = 0;
    const auto found = waitUntil([&] {
        wiggle = (wiggle + 1) % 8;
        inspected.desktop.input().movePointer(static_cast<int>(place.maxX()) - 20 + wiggle,
                                              static_cast<int>(place.midY()));
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        const auto readout = inspected.overlay.readout();
        return readout && readout->header == header && readout->value("size") == size;
    });
    const auto readout = inspected.overlay.readout();
    ASSERT_TRUE(found) << (readout ? readout->line() : "no overlay");
    EXPECT_TRUE(waitUntil([&] {
        return outlineProblem(screenshot(inspected.desktop.server()), place).empty();
    })) << outlineProblem(screenshot(inspected.desktop.server()), place);
}

constexpr Rect buttonPlace = {200, 150, 160, 40};
constexpr Rect headingPlace = {200, 300, 320, 48};

// Its tree sleeps until an assistive technology asks for it: nothing else in this test does.
TEST(OverChromium, WakesTheTreeOfAPageAndMeasuresItsElements) {
    InspectedDesktop inspected;
    const auto browser = startChromiumWith(inspected.desktop, page);
    (void)waitForWindow(inspected.desktop.server(), hasClass("Chromium"));
    auto lumetry = inspected.startLumetry();
    expectReadout(inspected, buttonPlace, "Button · Buy now", "160 × 40");
    expectReadout(inspected, headingPlace, "Heading · Prices", "320 × 48");
    EXPECT_TRUE(lumetry.running());
}

// Of a known browser's page, which has tools of its own, little more than the place is shown.
TEST(OverFirefox, OutlinesTheElementsOfAPage) {
    InspectedDesktop inspected;
    const auto browser = startFirefoxWith(inspected.desktop, page, FirefoxGuise::browser);
    (void)waitForWindow(inspected.desktop.server(), hasTitle("Prices — Mozilla Firefox"));
    auto lumetry = inspected.startLumetry();
    expectReadout(inspected, buttonPlace, "🌐 Firefox ESR · web", "160 × 40");
    expectReadout(inspected, headingPlace, "🌐 Firefox ESR · web", "320 × 48");
    EXPECT_TRUE(lumetry.running());
}

} // namespace
} // namespace lumetry::desktop
