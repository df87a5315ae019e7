#pragma once

#include "base/bitmap.h"

#include <string>

namespace lumetry::desktop {

/// What KWin composes for an output, in its device pixels: windows, the pointer left out, and
/// whatever lies above them. Opaque.
/// @param sessionBus the address of the session's message bus
/// @param output its name
/// Throws std::runtime_error when KWin does not give it out, for want of a desktop entry that
/// permits it (KwinDesktop::permit) for one.
[[nodiscard]] Bitmap kwinScreenshot(const std::string& sessionBus, const std::string& output);

} // namespace lumetry::desktop
