#pragma once

#include "rig/desktop_session.h"

#include <filesystem>
#include <string>

namespace lumetry::desktop {

/// An empty folder of the desktop's for one start of a browser: a second browser of the same
/// profile would only open a window in the first.
[[nodiscard]] std::filesystem::path makeProfileFolder(const DesktopSession& desktop,
                                                      const std::string& browser);

/// The page as a file of the desktop's; there is one at a time.
[[nodiscard]] std::filesystem::path writePage(const DesktopSession& desktop,
                                              const std::string& html);

} // namespace lumetry::desktop
