#pragma once

#include "base/geometry.h"
#include "rig/x_connection.h"

#include <optional>
#include <string>

namespace lumetry::desktop {

/// Where a program's icon is in the tray of the X server, in pixels of the root window. Absent
/// while there is none on screen.
/// @param className either half of the icon's WM_CLASS
[[nodiscard]] std::optional<Rect> trayIconOf(const XConnection& server,
                                             const std::string& className);

} // namespace lumetry::desktop
