#include "rig/firefox.h"

#include "rig/browser_files.h"

#include <fstream>
#include <vector>

namespace lumetry::desktop {
namespace {

/// Nothing comes up beside the page, and nothing is fetched.
constexpr const char* preferences = R"(
user_pref("app.normandy.enabled", false);
user_pref("app.shield.optoutstudies.enabled", false);
user_pref("app.update.enabled", false);
user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.cache.disk.enable", false);
user_pref("browser.discovery.enabled", false);
user_pref("browser.newtabpage.enabled", false);
user_pref("browser.region.update.enabled", false);
user_pref("browser.safebrowsing.malware.enabled", false);
user_pref("browser.safebrowsing.phishing.enabled", false);
user_pref("browser.search.update", false);
user_pref("browser.sessionstore.resume_from_crash", false);
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.startup.homepage_override.mstone", "ignore");
user_pref("browser.startup.page", 0);
user_pref("browser.topsites.contile.enabled", false);
user_pref("browser.translations.enable", false);
user_pref("browser.uitour.enabled", false);
user_pref("captivedetect.canonicalURL", "");
user_pref("datareporting.healthreport.uploadEnabled", false);
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("dom.push.connection.enabled", false);
user_pref("extensions.getAddons.cache.enabled", false);
user_pref("extensions.systemAddon.update.enabled", false);
user_pref("extensions.update.enabled", false);
user_pref("full-screen-api.warning.timeout", 0);
user_pref("geo.provider.network.url", "");
user_pref("media.gmp-manager.url", "");
user_pref("network.captive-portal-service.enabled", false);
user_pref("network.connectivity-service.enabled", false);
user_pref("network.dns.disablePrefetch", true);
user_pref("network.trr.mode", 5);
user_pref("services.settings.server", "");
user_pref("sidebar.revamp", false);
user_pref("signon.rememberSignons", false);
user_pref("termsofuse.bypassNotification", true);
user_pref("toolkit.cosmeticAnimations.enabled", false);
user_pref("toolkit.telemetry.enabled", false);
user_pref("toolkit.telemetry.reportingpolicy.firstRun", false);
user_pref("toolkit.telemetry.unified", false);
user_pref("trailhead.firstrun.didSeeAboutWelcome", true);
)";

constexpr const char* applicationName = "PageReader";

/// Makes windows of that class windows of an application of that name.
void installDesktopEntry(const DesktopSession& desktop, const std::string& name) {
    const auto folder =
        std::filesystem::path(desktop.environment().at("XDG_DATA_HOME")) / "applications";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / (name + ".desktop"))
        << "[Desktop Entry]\nType=Application\nName=" << name << "\nExec=" << name
        << "\nStartupWMClass=" << name << '\n';
}

} // namespace

ChildProcess startFirefox(DesktopSession& desktop, const std::filesystem::path& page,
                          FirefoxGuise guise) {
    const auto profile = makeProfileFolder(desktop, "firefox");
    std::ofstream(profile / "user.js") << preferences;
    std::vector<std::string> command = {"firefox-esr", "--new-instance", "--profile",
                                        profile.string()};
    if (guise == FirefoxGuise::application) {
        installDesktopEntry(desktop, applicationName);
        command.insert(command.end(), {"--class", applicationName, "--name", applicationName});
    }
    command.insert(command.end(), {"--kiosk", std::filesystem::absolute(page).string()});
    return desktop.start(command);
}

ChildProcess startFirefoxWith(DesktopSession& desktop, const std::string& html,
                              FirefoxGuise guise) {
    return startFirefox(desktop, writePage(desktop, html), guise);
}

} // namespace lumetry::desktop
