#include "support/real_desktop/accessible_tree.h"
#include "support/real_desktop/lumetry_settings.h"
#include "support/real_desktop/overlay_reader.h"
#include "support/real_desktop/private_desktop.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace lumetry::desktop {
namespace {

const std::filesystem::path logFile = "/tmp/lumetry-detect.log";

std::string contents(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/// Takes the log away before and after.
class DetectLogFile : public testing::Test {
protected:
    DetectLogFile() { std::filesystem::remove(logFile); }
    ~DetectLogFile() override { std::filesystem::remove(logFile); }
    DetectLogFile(const DetectLogFile&) = delete;
    DetectLogFile& operator=(const DetectLogFile&) = delete;

    void inspectButton() {
        markOnboarded(desktop);
        const auto application = desktop.start({"gtk3-widget-factory"});
        const auto place = AccessibleTree(desktop.accessibilityBusAddress())
                               .waitFor("gtk3-widget-factory", "push button", "link button")
                               .extents();
        ASSERT_TRUE(place);
        const auto lumetry = desktop.start({LUMETRY_PROGRAM});
        const OverlayReader overlay(desktop.server());
        requireUntil("the overlay", [&] { return overlay.texts().has_value(); });
        desktop.input().glidePointer(static_cast<int>(place->midX()),
                                     static_cast<int>(place->midY()));
        static_cast<void>(overlay.waitForHeader("Button · link button"));
    }

    PrivateDesktop desktop;
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

} // namespace
} // namespace lumetry::desktop
