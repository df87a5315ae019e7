#include "rig/browser_files.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace lumetry::desktop {

std::filesystem::path makeProfileFolder(const DesktopSession& desktop, const std::string& browser) {
    std::string profile = (desktop.folder() / (browser + "-XXXXXX")).string();
    if (!mkdtemp(profile.data())) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + profile);
    }
    return profile;
}

std::filesystem::path writePage(const DesktopSession& desktop, const std::string& html) {
    auto page = desktop.folder() / "page.html";
    std::ofstream(page) << html;
    return page;
}

} // namespace lumetry::desktop
