#include "platform/linux/applications/applications.h"

#include "base/text.h"
#include "platform/linux/applications/application_matcher.h"
#include "platform/linux/system/process_info.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumetry {
namespace {

/// Packages of distributions, vendors, Snap ("x_y") and Flatpak (reversed domains).
constexpr std::array browsers = std::to_array<PackagedBrowser>({
    {"firefox", "org.mozilla.firefox"},
    {"firefox-esr", "org.mozilla.firefox"},
    {"firefox_firefox", "org.mozilla.firefox"},
    {"mozilla-firefox", "org.mozilla.firefox"},
    {"firefox-developer-edition", "org.mozilla.firefoxdeveloperedition"},
    {"firefox-devedition", "org.mozilla.firefoxdeveloperedition"},
    {"firefox-aurora", "org.mozilla.firefoxdeveloperedition"},
    {"firefox-nightly", "org.mozilla.nightly"},
    {"google-chrome", "com.google.Chrome"},
    {"google-chrome-stable", "com.google.Chrome"},
    {"google-chrome-beta", "com.google.Chrome.beta"},
    {"google-chrome-unstable", "com.google.Chrome.dev"},
    {"google-chrome-canary", "com.google.Chrome.canary"},
    {"com.google.ChromeDev", "com.google.Chrome.dev"},
    {"com.google.Chrome.unstable", "com.google.Chrome.dev"},
    {"brave-browser", "com.brave.Browser"},
    {"brave", "com.brave.Browser"},
    {"brave_brave", "com.brave.Browser"},
    {"brave-browser-beta", "com.brave.Browser.beta"},
    {"brave-browser-nightly", "com.brave.Browser.nightly"},
    {"microsoft-edge", "com.microsoft.edgemac"},
    {"microsoft-edge-stable", "com.microsoft.edgemac"},
    {"com.microsoft.Edge", "com.microsoft.edgemac"},
    {"microsoft-edge-beta", "com.microsoft.edgemac.Beta"},
    {"microsoft-edge-canary", "com.microsoft.edgemac.Canary"},
    {"vivaldi-stable", "com.vivaldi.Vivaldi"},
    {"vivaldi", "com.vivaldi.Vivaldi"},
    {"opera", "com.operasoftware.Opera"},
    {"opera_opera", "com.operasoftware.Opera"},
    {"opera-stable", "com.operasoftware.Opera"},
    {"com.opera.Opera", "com.operasoftware.Opera"},
    {"opera-gx", "com.operasoftware.OperaGX"},
    {"opera-gx-stable", "com.operasoftware.OperaGX"},
});

constexpr std::size_t mostRemembered = 1000;

ActivationPolicy activationPolicyOf(const ProcessWindows& windows) {
    if (windows.inTaskBar) {
        return ActivationPolicy::regular;
    }
    return windows.any ? ActivationPolicy::accessory : ActivationPolicy::prohibited;
}

std::string programName(const ProcessInfo& process) {
    return validUtf8(process.executable.empty() ? process.shortName
                                                : process.executable.filename().string());
}

} // namespace

std::span<const PackagedBrowser> packagedBrowsers() {
    return browsers;
}

std::string commonIdentifier(std::string_view desktopId) {
    const auto* const browser = std::ranges::find(browsers, desktopId, &PackagedBrowser::desktopId);
    return std::string(browser == browsers.end() ? desktopId : browser->identifier);
}

LinuxApplications::LinuxApplications(DesktopWindows& windows, SystemPlaces places)
    : windows_(windows), places_(std::move(places)),
      entries_(places_.dataFolders, places_.languages) {}

std::optional<RunningApplication> LinuxApplications::runningApplication(pid_t pid) {
    const auto start = processStart(places_.processes, pid);
    if (!start) {
        known_.erase(pid);
        return std::nullopt;
    }
    ProcessWindows windows = windows_.windowsOf(pid);
    auto known = known_.find(pid);
    if (known == known_.end() || known->second.start != *start ||
        known->second.windowClasses != windows.classes) {
        if (known_.size() >= mostRemembered) {
            known_.clear();
        }
        RunningApplication application = describe(pid, windows.classes);
        known = known_
                    .insert_or_assign(
                        pid, Known{*start, std::move(windows.classes), std::move(application)})
                    .first;
    }
    RunningApplication application = known->second.application;
    application.activationPolicy = activationPolicyOf(windows);
    return application;
}

RunningApplication LinuxApplications::describe(pid_t pid,
                                               const std::vector<std::string>& windowClasses) {
    if (entries_.refresh()) {
        known_.clear();
    }
    const ProcessInfo process = readProcess(places_.processes, pid);
    const ApplicationMatch match = matchApplication(process, windowClasses, entries_, places_);
    RunningApplication application;
    if (!match.id.empty()) {
        application.bundleIdentifier = validUtf8(commonIdentifier(match.id));
    }
    std::string name = match.entry != nullptr && !match.entry->name.empty() ? match.entry->name
                                                                            : programName(process);
    if (!name.empty()) {
        application.localizedName = std::move(name);
    }
    if (!process.executableFolder.empty()) {
        application.bundleLocation = process.executableFolder.string();
        application.chromiumLibrary = (process.executableFolder / "libGLESv2.so").string();
    }
    return application;
}

} // namespace lumetry
