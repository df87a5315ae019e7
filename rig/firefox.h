#pragma once

#include "rig/desktop_session.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace lumetry::desktop {

enum class FirefoxGuise : std::uint8_t {
    browser, ///< as it is installed
    /// Under a desktop entry of another name, as any application that is built on the same engine
    /// goes by: browsers are known by their names.
    application,
};

/// Starts Firefox with a new profile over the whole screen, showing one page: the page's origin is
/// the screen's. As in everyday use, it builds its accessibility tree where an assistive technology
/// is announced.
/// @param page an HTML file
[[nodiscard]] ChildProcess startFirefox(DesktopSession& desktop, const std::filesystem::path& page,
                                        FirefoxGuise guise);

/// The same for a page given as its HTML text.
[[nodiscard]] ChildProcess startFirefoxWith(DesktopSession& desktop, const std::string& html,
                                            FirefoxGuise guise);

} // namespace lumetry::desktop
