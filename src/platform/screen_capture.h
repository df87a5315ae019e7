#pragma once

#include "base/bitmap.h"
#include "base/geometry.h"
#include "base/int_geometry.h"

#include <cstdint>
#include <optional>

namespace lumetry {

/// How pixels are found when a picture is drawn at another size (CGInterpolationQuality).
enum class Interpolation {
    none, ///< the nearest one
    low,  ///< a blend of the four around the place
};

/// A captured pixel of what exists nowhere: transparent black.
inline constexpr std::uint32_t missingPixel = 0;

/// Reads what is on the screen. All other pixels than missing ones are opaque.
class ScreenCapture {
public:
    ScreenCapture() = default;
    ScreenCapture(const ScreenCapture&) = delete;
    ScreenCapture& operator=(const ScreenCapture&) = delete;
    virtual ~ScreenCapture() = default;

    /// What the screens show of an area below one window (CGWindowListCreateImage with
    /// kCGWindowListOptionOnScreenBelowWindow), in sRGB at the screen's own resolution. What lies
    /// on no screen is missing. Absent when nothing can be read.
    /// @param area accessibility space
    /// @param windowNumber of the window above what is wanted (OverlayWindow::windowNumber)
    [[nodiscard]] virtual std::optional<Bitmap> captureBelow(const Rect& area,
                                                             std::uint32_t windowNumber) = 0;
    /// The same drawn into a bitmap of that size, with what windows have beyond the screens: there
    /// it is missing where no window lies, or where none keeps its pixels.
    [[nodiscard]] virtual std::optional<Bitmap> captureBelow(const Rect& area,
                                                             std::uint32_t windowNumber,
                                                             IntSize size,
                                                             Interpolation interpolation) = 0;
};

} // namespace lumetry
