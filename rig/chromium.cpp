#include "rig/chromium.h"

#include "rig/browser_files.h"

namespace lumetry::desktop {

ChildProcess startChromium(DesktopSession& desktop, const std::filesystem::path& page) {
    const std::string profile = makeProfileFolder(desktop, "chromium").string();
    return desktop.start(
        {"chromium", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--disable-dev-shm-usage", "--password-store=basic", "--hide-scrollbars",
         "--ozone-platform=" + desktop.environment().at("XDG_SESSION_TYPE"),
         "--user-data-dir=" + profile, "--kiosk", std::filesystem::absolute(page).string()});
}

ChildProcess startChromiumWith(DesktopSession& desktop, const std::string& html) {
    return startChromium(desktop, writePage(desktop, html));
}

} // namespace lumetry::desktop
