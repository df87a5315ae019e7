#include "platform/linux/applications/browser_identifiers.h"

#include <algorithm>
#include <array>

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

} // namespace

std::span<const PackagedBrowser> packagedBrowsers() {
    return browsers;
}

std::string commonIdentifier(std::string_view desktopId) {
    const auto* const browser = std::ranges::find(browsers, desktopId, &PackagedBrowser::desktopId);
    return std::string(browser == browsers.end() ? desktopId : browser->identifier);
}

} // namespace lumetry
