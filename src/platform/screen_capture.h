#pragma once

#include "base/bitmap.h"
#include "base/geometry.h"

#include <cstdint>
#include <optional>

namespace lumetry {

/// A width and a height in pixels.
struct PixelSize {
    int width = 0;
    int height = 0;

    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// How pixels are found when a picture is drawn at another size (CGInterpolationQuality).
enum class Interpolation {
    none, ///< the nearest one
    low,  ///< a blend of the four around the place
};

/// Reads what is on the screen.
class ScreenCapture {
public:
    ScreenCapture() = default;
    ScreenCapture(const ScreenCapture&) = delete;
    ScreenCapture& operator=(const ScreenCapture&) = delete;
    virtual ~ScreenCapture() = default;

    /// The windows below one window as they show in an area (CGWindowListCreateImage with
    /// kCGWindowListOptionOnScreenBelowWindow), in sRGB at the screen's own resolution. Parts of
    /// the area that lie on no screen are transparent black. Absent when nothing can be read.
    /// @param area accessibility space
    /// @param windowNumber of the window above what is wanted (OverlayWindow::windowNumber)
    [[nodiscard]] virtual std::optional<Bitmap> captureBelow(const Rect& area,
                                                             std::uint32_t windowNumber) = 0;
    /// The same drawn into a bitmap of that size.
    [[nodiscard]] virtual std::optional<Bitmap> captureBelow(const Rect& area,
                                                             std::uint32_t windowNumber,
                                                             PixelSize size,
                                                             Interpolation interpolation) = 0;
};

} // namespace lumetry
