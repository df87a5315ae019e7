#include "platform/linux/kwin/bridge.h"
#include "platform/linux/kwin/screenshot_permission.h"
#include "support/printing/printing.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace lumetry::kwin {
namespace {

constexpr const char* lineOfKwin5 =
    "{1-2}\t77\tnormal\t1\t0.5\t10 20 300.5 200\t\t-16 10 352 224\t0\t1\t"
    "editor\tEditor\torg.example.Editor\tNotes: a b";

TEST(WindowReport, SaysWhatKWinKnowsOfWindows) {
    const auto windows = readWindows(lineOfKwin5);
    ASSERT_EQ(windows.size(), 1U);
    const Window& window = windows.front();
    EXPECT_EQ(window.id, "{1-2}");
    EXPECT_EQ(window.pid, 77);
    EXPECT_EQ(window.kind, Kind::normal);
    EXPECT_TRUE(window.active);
    EXPECT_EQ(window.opacity, 0.5);
    EXPECT_EQ(window.frame, (Rect{10, 20, 300.5, 200}));
    EXPECT_EQ(window.client, window.frame); // KWin 5 does not tell it
    EXPECT_EQ(window.buffer, (Rect{-16, 10, 352, 224}));
    EXPECT_TRUE(window.inTaskBar);
    EXPECT_TRUE(window.tellsDamage);
    EXPECT_EQ(window.classes, (std::vector<std::string>{"editor", "Editor", "org.example.Editor"}));
    EXPECT_EQ(window.caption, "Notes: a b");
}

TEST(WindowReport, LeavesOutWhatMakesNoSense) {
    const std::string good(lineOfKwin5);
    const auto with = [&](const std::string& old, const std::string& other) {
        std::string line = good;
        line.replace(line.find(old), old.size(), other);
        return line;
    };
    EXPECT_EQ(readWindows("").size(), 0U);
    EXPECT_EQ(readWindows(good + "\n\n" + good).size(), 2U);
    EXPECT_EQ(readWindows(good + "\textra").size(), 0U);
    EXPECT_EQ(readWindows(with("300.5", "wide")).size(), 0U);
    EXPECT_EQ(readWindows(with("10 20 300.5 200", "10 20 300.5")).size(), 0U);
    EXPECT_EQ(readWindows(with("{1-2}", "")).size(), 0U);
    EXPECT_EQ(readWindows(with("77", "0")).front().pid, std::nullopt);
    EXPECT_EQ(readWindows(with("normal", "unheard of")).front().kind, Kind::normal);
    EXPECT_EQ(readWindows(with("-16 10 352 224", "")).front().buffer, (Rect{10, 20, 300.5, 200}));
}

TEST(ScreenshotPermission, IsAnEntryThatNamesThisProgram) {
    std::string folder = (std::filesystem::temp_directory_path() / "lumetry-data-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    EXPECT_TRUE(permitScreenshots(folder));
    const auto own = std::filesystem::read_symlink("/proc/self/exe");
    std::ostringstream entry;
    entry << std::ifstream(std::filesystem::path(folder) / "applications" /
                           ("app.lumetry." + own.filename().string() + ".permission.desktop"))
                 .rdbuf();
    EXPECT_NE(entry.str().find("Exec=\"" + own.string() + "\"\n"), std::string::npos)
        << entry.str();
    EXPECT_NE(entry.str().find("X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2\n"),
              std::string::npos);
    std::filesystem::remove_all(folder);
    EXPECT_FALSE(permitScreenshots("/proc/nowhere"));
}

} // namespace
} // namespace lumetry::kwin
