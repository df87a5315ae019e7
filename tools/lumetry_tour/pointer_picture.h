#pragma once

#include "base/bitmap.h"
#include "rig/x_connection.h"

namespace lumetry::desktop {

/// Puts the pointer, as it looks and where it is now, onto a screenshot of the whole screen.
/// Throws std::runtime_error when the server does not give out how it looks.
void drawPointer(const XConnection& server, Bitmap& screen);

} // namespace lumetry::desktop
