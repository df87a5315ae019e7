#pragma once

#include "base/geometry.h"
#include "rig/x_connection.h"

#include <vector>

namespace lumetry::desktop {

/// Divides the root window into monitors, of which the first is the primary one (RandR 1.5).
/// Throws std::runtime_error when the server refuses.
void arrangeMonitors(const XConnection& server, const std::vector<Rect>& monitors);

} // namespace lumetry::desktop
