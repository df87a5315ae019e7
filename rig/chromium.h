#pragma once

#include "rig/desktop_session.h"

#include <filesystem>
#include <string>

namespace lumetry::desktop {

/// Starts Chromium with an empty profile over the whole screen, showing one page: the page's origin
/// is the screen's. Its accessibility tree is asleep, as in everyday use.
/// @param page an HTML file
[[nodiscard]] ChildProcess startChromium(DesktopSession& desktop,
                                         const std::filesystem::path& page);

/// The same for a page given as its HTML text.
[[nodiscard]] ChildProcess startChromiumWith(DesktopSession& desktop, const std::string& html);

} // namespace lumetry::desktop
