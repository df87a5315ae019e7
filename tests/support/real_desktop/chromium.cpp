#include "support/real_desktop/chromium.h"

#include <fstream>
#include <string>
#include <vector>

namespace lumetry::desktop {

ChildProcess startChromium(PrivateDesktop& desktop, const std::filesystem::path& page) {
    // Every start has a profile of its own: a second one would only open a window in the first.
    std::string profile = (desktop.folder() / "chromium-XXXXXX").string();
    if (!mkdtemp(profile.data())) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + profile);
    }
    return desktop.start(
        {"chromium", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--disable-dev-shm-usage", "--password-store=basic", "--hide-scrollbars",
         "--user-data-dir=" + profile, "--kiosk", std::filesystem::absolute(page).string()});
}

ChildProcess startChromiumWith(PrivateDesktop& desktop, const std::string& html) {
    const auto page = desktop.folder() / "page.html";
    std::ofstream(page) << html;
    return startChromium(desktop, page);
}

} // namespace lumetry::desktop
