#include "probe/electron.h"

#include "base/text.h"
#include "support/fake_platform/fake_desktop.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

using Writes = std::vector<std::pair<std::string, bool>>;
const Writes wake = {{"AXManualAccessibility", true}, {"AXEnhancedUserInterface", true}};
const Writes release = {{"AXEnhancedUserInterface", false}};

/// What was written to one application, in order.
Writes writesTo(FakeDesktop& desktop, pid_t pid) {
    Writes found;
    for (const auto& [element, attribute, value] : desktop.accessibility.writes) {
        if (element == &desktop.accessibility.application(pid)) {
            found.emplace_back(attribute, value.as<bool>().value());
        }
    }
    return found;
}

void wakeNow(FakeDesktop& desktop, pid_t pid) {
    wakeElectron(desktop.platform, desktop.state, desktop.accessibility.createApplication(pid),
                 pid);
}

TEST(IsElectronApp, LooksForTheLibraryInEveryFramework) {
    const std::string frameworks = "/Applications/Chat.app/Contents/Frameworks/";
    using Case = std::pair<std::vector<std::string>, bool>;
    for (const auto& [files, electron] : {
             Case{{"Electron Framework.framework/Libraries/libGLESv2.dylib"}, true},
             Case{{"Electron Framework.framework/Versions/A/Libraries/libGLESv2.dylib"}, true},
             Case{{"X.framework/Versions/A/X", "X.framework/Versions/B/Libraries/libGLESv2.dylib"},
                  true},
             Case{{"A.framework/A", "B.framework/Libraries/libGLESv2.dylib"}, true},
             Case{{"Electron Framework.Framework/Libraries/libGLESv2.dylib"}, false},
             Case{{"Helper.app/Libraries/libGLESv2.dylib", "libGLESv2.dylib"}, false},
         }) {
        FakeDesktop desktop;
        desktop.launch(9, "Chat", "chat");
        for (const std::string& file : files) {
            desktop.fileSystem.files.insert(frameworks + file);
        }
        EXPECT_EQ(isElectronApp(desktop.platform, desktop.state, 9), electron) << files.back();
    }
}

TEST(IsElectronApp, TakesTheLibraryThatThePlatformNames) {
    FakeDesktop desktop;
    desktop.launch(9, "chat", "chat");
    desktop.applications.running[9].chromiumLibrary = "/usr/lib/chat/libGLESv2.so";
    desktop.applications.running[10] = desktop.applications.running[9];
    EXPECT_FALSE(isElectronApp(desktop.platform, desktop.state, 9));
    desktop.fileSystem.files.insert("/usr/lib/chat/libGLESv2.so");
    EXPECT_TRUE(isElectronApp(desktop.platform, desktop.state, 10));
}

TEST(IsElectronApp, ExaminesAProcessOnce) {
    FakeDesktop desktop;
    desktop.launchElectron(9, "Chat");
    desktop.launch(10, "tool", "tool");
    desktop.applications.running[10].bundleLocation.reset();
    const auto isElectron = [&](pid_t pid) {
        return isElectronApp(desktop.platform, desktop.state, pid);
    };
    EXPECT_TRUE(isElectron(9));
    EXPECT_FALSE(isElectron(10));
    EXPECT_FALSE(isElectron(4312));
    const int accesses = desktop.fileSystem.accesses;
    desktop.launchElectron(4312, "late");
    EXPECT_TRUE(isElectron(9));
    EXPECT_FALSE(isElectron(4312));
    EXPECT_EQ(desktop.fileSystem.accesses, accesses);
}

TEST(WakeElectron, WaitsSevenTenthsOfASecond) {
    FakeDesktop desktop;
    wakeNow(desktop, 9);
    EXPECT_EQ(writesTo(desktop, 9), wake);
    desktop.runLoop.advance(0.5);
    wakeNow(desktop, 9);
    wakeNow(desktop, 10);
    EXPECT_EQ(writesTo(desktop, 9), wake);
    EXPECT_EQ(writesTo(desktop, 10), wake) << "each process has its own time";
    desktop.runLoop.advance(0.3);
    wakeNow(desktop, 9);
    EXPECT_EQ(writesTo(desktop, 9).size(), 4U) << "counted from the wake, not from the attempt";
}

TEST(WakeVisibleChromiumApps, OncePerApplicationWhateverItsWindows) {
    FakeDesktop desktop;
    desktop.launchElectron(9, "Chat");
    desktop.launch(10, "Notes", "notes");
    desktop.launchElectron(11, "Mail");
    desktop.launchElectron(12, "Hidden");
    desktop.launchElectron(FakeDesktop::ownPID, "Lumetry");
    desktop.windowServer.windows = {
        {{}, 1, 0, Rect{0, 0, 9, 9}}, {FakeDesktop::ownPID, 1, 0, Rect{0, 0, 9, 9}},
        {9, 1, 0, Rect{0, 0, 9, 9}},  {10, 1, 0, Rect{0, 0, 9, 9}},
        {9, 1, 0, Rect{0, 0, 9, 9}},  {11, 0, {}, {}}};
    wakeVisibleChromiumApps(desktop.platform, desktop.state);
    EXPECT_EQ(writesTo(desktop, 9), wake);
    EXPECT_EQ(writesTo(desktop, 11), wake) << "though its window cannot be seen";
    EXPECT_EQ(desktop.accessibility.writes.size(), 4U);
    EXPECT_EQ(desktop.state.enhancedPIDs, (std::set<pid_t>{9, 11}));

    desktop.windowServer.windows.reset();
    desktop.runLoop.advance(1);
    wakeVisibleChromiumApps(desktop.platform, desktop.state);
    EXPECT_EQ(desktop.accessibility.writes.size(), 4U);
}

TEST(ReleaseElectronEnhancements, TakesBackEveryWakeOnce) {
    FakeDesktop desktop;
    desktop.launchElectron(9, "Chat");
    ASSERT_TRUE(isElectronApp(desktop.platform, desktop.state, 9));
    for (const pid_t pid : {9, 10, 9}) {
        desktop.runLoop.advance(0.8);
        wakeNow(desktop, pid);
    }
    desktop.accessibility.writes.clear();
    releaseElectronEnhancements(desktop.platform, desktop.state);
    EXPECT_EQ(writesTo(desktop, 9), release);
    EXPECT_EQ(writesTo(desktop, 10), release);
    EXPECT_TRUE(desktop.state.enhancedPIDs.empty());
    EXPECT_EQ(desktop.state.electronPIDCache.count(9), 1U) << "what it is does not change";

    desktop.accessibility.writes.clear();
    releaseElectronEnhancements(desktop.platform, desktop.state);
    EXPECT_TRUE(desktop.accessibility.writes.empty());
    wakeNow(desktop, 9);
    EXPECT_EQ(writesTo(desktop, 9), wake) << "the next start need not wait";
}

TEST(IsBrowser, ComparesTheWholeIdentifier) {
    FakeDesktop desktop;
    const auto isBrowserNamed = [&](const std::string& identifier) {
        desktop.launch(9, "App", identifier);
        return isBrowser(desktop.platform, 9);
    };
    for (const std::string& identifier :
         split("com.google.Chrome com.google.Chrome.canary com.google.Chrome.beta "
               "com.google.Chrome.dev com.apple.Safari com.apple.SafariTechnologyPreview "
               "com.microsoft.edgemac com.microsoft.edgemac.Canary com.microsoft.edgemac.Beta "
               "com.brave.Browser com.brave.Browser.nightly com.brave.Browser.beta "
               "company.thebrowser.Browser org.mozilla.firefox "
               "org.mozilla.firefoxdeveloperedition org.mozilla.nightly com.operasoftware.Opera "
               "com.operasoftware.OperaGX com.vivaldi.Vivaldi com.kagi.kagimacOS "
               "com.duckduckgo.macos.browser",
               ' ')) {
        EXPECT_TRUE(isBrowserNamed(identifier)) << identifier;
    }
    for (const char* identifier :
         {"com.apple.safari", "com.google.Chrome.helper", "com.google", ""}) {
        EXPECT_FALSE(isBrowserNamed(identifier)) << identifier;
    }
    desktop.applications.running[9].bundleIdentifier.reset();
    EXPECT_FALSE(isBrowser(desktop.platform, 9));
    EXPECT_FALSE(isBrowser(desktop.platform, 4312));
}

} // namespace
} // namespace lumetry
