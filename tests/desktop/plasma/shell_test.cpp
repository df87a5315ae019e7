#include "rig/accessible_tree.h"
#include "rig/bus.h"
#include "rig/kwin_desktop.h"
#include "rig/lumetry_settings.h"
#include "rig/notifier_tray.h"
#include "rig/processes/wait_until.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace lumetry::desktop {
namespace {

namespace fs = std::filesystem;

class PlasmaShell : public testing::Test {
protected:
    void SetUp() override {
        if (const auto problem = KwinDesktop::problem()) {
            GTEST_SKIP() << *problem;
        }
    }
};

/// A hint of the overlay: at the bottom of the screen, whatever the pointer is over.
bool showsHint(const KwinDesktop& desktop) {
    const Bitmap screen = desktop.screenshot();
    for (int x = screen.width / 2; x < screen.width; ++x) {
        if ((screen.at(x, screen.height - 26) & 0xFFFFFFU) != 0) {
            return true;
        }
    }
    return false;
}

/// Chooses a desktop theme whose panels write in that colour.
void chooseTheme(const KwinDesktop& desktop, const std::string& name, const std::string& color) {
    const auto& variables = desktop.environment();
    const fs::path folder =
        fs::path(variables.at("XDG_DATA_HOME")) / "plasma" / "desktoptheme" / name;
    fs::create_directories(folder);
    std::ofstream(folder / "colors") << "[Colors:Window]\nForegroundNormal=" << color << '\n';
    // Replaced as a whole, as KDE does it.
    const fs::path settings = fs::path(variables.at("XDG_CONFIG_HOME")) / "plasmarc";
    std::ofstream(settings.string() + ".new") << "[Theme]\nname=" << name << '\n';
    fs::rename(settings.string() + ".new", settings);
}

TEST_F(PlasmaShell, ThePanelShowsIconAndMenu) {
    KwinDesktop desktop;
    desktop.permit(LUMETRY_PROGRAM);
    markOnboarded(desktop);
    const auto lumetry = desktop.start({LUMETRY_PROGRAM});
    requireUntil("inspect mode", [&] { return showsHint(desktop); });
    // A panel that comes later.
    NotifierTray tray(desktop.sessionBusAddress());
    tray.waitForItem();
    const auto isMenu = tray.itemProperty("ItemIsMenu");
    ASSERT_TRUE(isOfType(isMenu, "b"));
    EXPECT_TRUE(g_variant_get_boolean(isMenu.get())) << "no window of its own for the menu";

    constexpr std::uint32_t breezeText = 0xFF232629;
    EXPECT_EQ(tray.itemColor(), breezeText);
    chooseTheme(desktop, "night", "239,240,241");
    EXPECT_TRUE(waitUntil([&] { return tray.itemColor() == 0xFFEFF0F1; }));

    const auto rows = tray.rows();
    ASSERT_GT(rows.size(), 3U);
    EXPECT_EQ(rows.front().label, "Toggle Inspect  ⌃⇧M");
    EXPECT_TRUE(rows.front().enabled);
    EXPECT_EQ(rows[1].label, "");
    EXPECT_EQ(rows[2].label, "How to use");
    EXPECT_FALSE(rows[2].enabled);
    tray.choose("Toggle Inspect  ⌃⇧M");
    EXPECT_TRUE(waitUntil([&] { return !showsHint(desktop); }));
    tray.choose("Toggle Inspect  ⌃⇧M");
    EXPECT_TRUE(waitUntil([&] { return showsHint(desktop); }));
    tray.choose("Quit Lumetry");
    const auto bus = connectToBus(desktop.sessionBusAddress());
    EXPECT_TRUE(waitUntil([&] { return !isOnBus(*bus, "app.lumetry.Lumetry"); }));
    EXPECT_FALSE(showsHint(desktop));
}

TEST_F(PlasmaShell, GrantLetsProgramsReadTheScreenAtOnce) {
    KwinDesktop desktop;
    markOnboarded(desktop);
    // As it is after a build, beside the other programs, and named by no desktop entry.
    const fs::path programs = desktop.folder() / "a build";
    fs::create_directories(programs);
    fs::copy_file(LUMETRY_PROGRAM, programs / "lumetry");
    fs::copy_file(LUMETRY_MEASURE, programs / "lumetry-measure");
    const auto form = desktop.start({LUMETRY_QT_FORM});
    auto lumetry = desktop.start({(programs / "lumetry").string()});
    const AccessibleTree tree(desktop.accessibilityBusAddress());
    const auto grant = tree.waitFor("lumetry", "push button", "Grant Screen Recording");
    const auto button = [&](const std::string& name) {
        return tree.waitFor("lumetry", "push button", name);
    };
    (void)button("Grant Screen Recording to continue");
    grant.press();
    button("Continue").press();
    EXPECT_FALSE(grant.showing());
    button("Start Inspecting").press();
    requireUntil("inspect mode", [&] { return showsHint(desktop); });

    // The overlay of the one program is not what the other one measures.
    const auto measured = waitUntil([&] {
        ProcessOptions options;
        options.environment = desktop.environment();
        const auto finished =
            runProgram({(programs / "lumetry-measure").string(), "640", "400"}, options);
        return finished.status.code == 0 && finished.output.find("fill") != std::string::npos;
    });
    EXPECT_TRUE(measured);
    lumetry.terminate();
}

} // namespace
} // namespace lumetry::desktop
