#pragma once

#include "base/bitmap.h"
#include "base/geometry.h"
#include "rig/processes/wait_until.h"
#include "rig/x_connection.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace lumetry::desktop {

/// The screen as a viewer would see it, without the pointer. Opaque.
/// @param area whole pixels of the root window, y downwards; must lie on the screen
/// Throws std::runtime_error when the server does not give it out.
[[nodiscard]] Bitmap screenshot(const XConnection& server, const Rect& area);
[[nodiscard]] Bitmap screenshot(const XConnection& server);

/// A screenshot of an area that has come to rest: the first one that stayed the same, pixel by
/// pixel, for that long; absent when it does not within the deadline (an application may move
/// something forever).
[[nodiscard]] std::optional<Bitmap>
settledScreenshot(const XConnection& server, const Rect& area,
                  std::chrono::milliseconds rest = std::chrono::milliseconds(200),
                  std::chrono::milliseconds deadline = generousDeadline);

/// Throws std::runtime_error when the file cannot be written. Missing folders are made.
void writePng(const Bitmap& bitmap, const std::filesystem::path& file);

} // namespace lumetry::desktop
