#include "rig/accessible_tree.h"
#include "rig/chromium.h"
#include "rig/lumetry_settings.h"
#include "rig/overlay_reader.h"
#include "rig/private_desktop.h"
#include "rig/screenshot.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>
#include <string>

namespace lumetry::desktop {
namespace {

std::string contents(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/// A log of its own: that of whoever runs the test stays as it is.
class DetectLogFile : public testing::Test {
protected:
    [[nodiscard]] ChildProcess startLumetry() {
        return desktop.start({LUMETRY_PROGRAM}, {{"LUMETRY_DETECT_LOG", logFile.string()}});
    }

    void inspectButton() {
        markOnboarded(desktop);
        const auto application = desktop.start({"gtk3-widget-factory"});
        const auto place = AccessibleTree(desktop.accessibilityBusAddress())
                               .waitFor("gtk3-widget-factory", "push button", "link button")
                               .extents();
        ASSERT_TRUE(place);
        const auto lumetry = startLumetry();
        const OverlayReader overlay(desktop.server());
        requireUntil("the overlay", [&] { return overlay.texts().has_value(); });
        desktop.input().glidePointer(static_cast<int>(place->midX()),
                                     static_cast<int>(place->midY()));
        static_cast<void>(overlay.waitForHeader("Button · link button"));
    }

    PrivateDesktop desktop;
    const std::filesystem::path logFile = desktop.folder() / "detect.log";
};

TEST_F(DetectLogFile, TellsEachChangeToItsOwnerOnly) {
    switchOnDetectLog(desktop);
    inspectButton();
    EXPECT_TRUE(waitUntil([&] {
        return contents(logFile).find("path=AX-real header=Button · link button") !=
               std::string::npos;
    })) << contents(logFile);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(logFile).permissions(),
              perms::owner_read | perms::owner_write);
}

TEST_F(DetectLogFile, IsNotWrittenThroughALinkNorWithoutTheSetting) {
    const auto elsewhere = desktop.folder() / "elsewhere";
    std::ofstream(elsewhere) << "mine";
    std::filesystem::create_symlink(elsewhere, logFile);
    switchOnDetectLog(desktop);
    inspectButton();
    EXPECT_EQ(contents(elsewhere), "mine");
}

// What a page says of itself while its tree is asleep is one frame over all of it.
TEST_F(DetectLogFile, TellsWhenPixelsShowMoreThanASleepingPage) {
    markOnboarded(desktop);
    switchOnDetectLog(desktop);
    desktop.input().movePointer(360, 230);
    const auto browser = startChromiumWith(desktop, R"(<!doctype html><title>Drawing</title>
<style>body { margin: 0; overflow: hidden }</style><canvas width="1280" height="800"></canvas>
<script>
  const paint = document.querySelector('canvas').getContext('2d');
  paint.fillStyle = '#1D4ED8';
  paint.fillRect(300, 200, 120, 60);
</script>)");
    requireUntil("the drawing", [&] {
        constexpr std::uint32_t blue = 0x1D4ED8;
        return (screenshot(desktop.server()).at(360, 230) & 0xFFFFFFU) == blue;
    });
    const auto lumetry = startLumetry();
    EXPECT_TRUE(waitUntil([&] {
        // A box is the way from one edge to the other: a step less than its pixels.
        return contents(logFile).find("electron=true path=coarse→pixel header=≈ element "
                                      "box=119x59 win=1280x800") != std::string::npos;
    })) << contents(logFile);
}

} // namespace
} // namespace lumetry::desktop
