#include "probe/electron.h"

#include "platform/accessibility.h"
#include "platform/applications.h"
#include "platform/ax_value.h"
#include "platform/file_system.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace lumetry {
namespace {

constexpr double wakeIntervalSeconds = 0.7;

constexpr std::array browserBundleIDs = std::to_array<std::string_view>({
    "com.google.Chrome",
    "com.google.Chrome.canary",
    "com.google.Chrome.beta",
    "com.google.Chrome.dev",
    "com.apple.Safari",
    "com.apple.SafariTechnologyPreview",
    "com.microsoft.edgemac",
    "com.microsoft.edgemac.Canary",
    "com.microsoft.edgemac.Beta",
    "com.brave.Browser",
    "com.brave.Browser.nightly",
    "com.brave.Browser.beta",
    "company.thebrowser.Browser",
    "org.mozilla.firefox",
    "org.mozilla.firefoxdeveloperedition",
    "org.mozilla.nightly",
    "com.operasoftware.Opera",
    "com.operasoftware.OperaGX",
    "com.vivaldi.Vivaldi",
    "com.kagi.kagimacOS",
    "com.duckduckgo.macos.browser",
});

bool hasGLES(FileSystem& files, const std::string& framework) {
    if (files.fileExists(framework + "/Libraries/libGLESv2.dylib")) {
        return true;
    }
    const std::string versions = framework + "/Versions";
    const auto entries = files.contentsOfDirectory(versions);
    return entries && std::ranges::any_of(*entries, [&](const std::string& version) {
               return files.fileExists(versions + "/" + version + "/Libraries/libGLESv2.dylib");
           });
}

bool bundlesChromium(FileSystem& files, const std::string& bundle) {
    const std::string frameworks = bundle + "/Contents/Frameworks";
    const auto entries = files.contentsOfDirectory(frameworks);
    return entries && std::ranges::any_of(*entries, [&](const std::string& entry) {
               return entry.ends_with(".framework") && hasGLES(files, frameworks + "/" + entry);
           });
}

bool examine(const Platform& platform, pid_t pid) {
    const auto application = platform.applications.runningApplication(pid);
    if (!application || !application->bundleLocation) {
        return false;
    }
    return bundlesChromium(platform.fileSystem, *application->bundleLocation) ||
           (application->chromiumLibrary &&
            platform.fileSystem.fileExists(*application->chromiumLibrary));
}

} // namespace

bool isElectronApp(const Platform& platform, ProbeState& state, pid_t pid) {
    const auto known = state.electronPIDCache.find(pid);
    if (known != state.electronPIDCache.end()) {
        return known->second;
    }
    return state.electronPIDCache[pid] = examine(platform, pid);
}

void wakeElectron(const Platform& platform, ProbeState& state, const AXUIElement& application,
                  pid_t pid) {
    const double now = platform.runLoop.now();
    double& last = state.electronWakeAt[pid];
    if (!(now - last > wakeIntervalSeconds)) {
        return;
    }
    last = now;
    application.setAttributeValue("AXManualAccessibility", true);
    application.setAttributeValue("AXEnhancedUserInterface", true);
    state.enhancedPIDs.insert(pid);
}

void wakeVisibleChromiumApps(const Platform& platform, ProbeState& state) {
    const auto windows = platform.windowServer.onScreenWindows();
    if (!windows) {
        return;
    }
    std::set<pid_t> seen = {state.lumetryPID};
    for (const WindowInfo& window : *windows) {
        if (!window.ownerPID || !seen.insert(*window.ownerPID).second) {
            continue;
        }
        if (isElectronApp(platform, state, *window.ownerPID)) {
            wakeElectron(platform, state,
                         platform.accessibility.createApplication(*window.ownerPID),
                         *window.ownerPID);
        }
    }
}

void releaseElectronEnhancements(const Platform& platform, ProbeState& state) {
    for (const pid_t pid : state.enhancedPIDs) {
        platform.accessibility.createApplication(pid).setAttributeValue("AXEnhancedUserInterface",
                                                                        false);
    }
    state.enhancedPIDs.clear();
    state.electronWakeAt.clear();
}

bool isBrowser(const Platform& platform, pid_t pid) {
    const auto application = platform.applications.runningApplication(pid);
    return application && application->bundleIdentifier &&
           std::ranges::find(browserBundleIDs, *application->bundleIdentifier) !=
               browserBundleIDs.end();
}

} // namespace lumetry
