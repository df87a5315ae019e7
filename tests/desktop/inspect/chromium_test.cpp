#include "inspected_desktop.h"

#include "support/real_desktop/chromium.h"
#include "support/real_desktop/desktop_windows.h"

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

// Its tree sleeps until an assistive technology asks for it: nothing else in this test does.
TEST(OverChromium, WakesTheTreeOfAPageAndMeasuresItsElements) {
    InspectedDesktop inspected;
    const auto browser = startChromiumWith(inspected.desktop, page);
    (void)waitForWindow(inspected.desktop.server(), hasClass("Chromium"));
    auto lumetry = inspected.startLumetry();

    const struct {
        Rect place;
        const char* header;
        const char* size;
    } cases[] = {
        {{200, 150, 160, 40}, "Button · Buy now", "160 × 40"},
        {{200, 300, 320, 48}, "Heading · Prices", "320 × 48"},
    };
    for (const auto& [place, header, size] : cases) {
        SCOPED_TRACE(header);
        // The tree is built while the pointer is being moved: a little to and fro, as a hand does.
        int wiggle = 0;
        const auto found = waitUntil([&] {
            wiggle = (wiggle + 1) % 8;
            inspected.desktop.input().movePointer(static_cast<int>(place.maxX()) - 20 + wiggle,
                                                  static_cast<int>(place.midY()));
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
            const auto readout = inspected.overlay.readout();
            return readout && readout->header == header;
        });
        const auto readout = inspected.overlay.readout();
        ASSERT_TRUE(found) << (readout ? readout->line() : "no overlay");
        EXPECT_EQ(readout->value("size"), size);
        EXPECT_TRUE(waitUntil([&] {
            return outlineProblem(screenshot(inspected.desktop.server()), place).empty();
        })) << outlineProblem(screenshot(inspected.desktop.server()), place);
    }
    EXPECT_TRUE(lumetry.running());
}

} // namespace
} // namespace lumetry::desktop
