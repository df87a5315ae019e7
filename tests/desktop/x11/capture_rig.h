#pragma once

#include "x11_rig.h"

#include "base/bitmap.h"
#include "platform/screen_capture.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetry::desktop {

constexpr std::uint32_t red = 0xFFCC2020;
constexpr std::uint32_t green = 0xFF20AA30;
constexpr std::uint32_t blue = 0xFF2040CC;

/// A desktop with the windows of another process, and captures of it.
class CaptureRig : public X11Rig {
public:
    explicit CaptureRig(const Options& options = {});

    [[nodiscard]] ScreenCapture& capture() { return x11().screenCapture(); }
    /// Captures once everything that happened has come in. Throws when there is no capture.
    [[nodiscard]] Bitmap captured(const Rect& area, std::uint32_t windowNumber = 0);
    /// One pixel of that, as 0xAARRGGBB.
    [[nodiscard]] std::uint32_t pixel(double x, double y, std::uint32_t windowNumber = 0) {
        return captured({x, y, 1, 1}, windowNumber).at(0, 0);
    }

    /// Runs until that pixel has the colour, both captured and on the screen. Throws when it does
    /// not come to that.
    void awaitPixel(double x, double y, std::uint32_t color);

    /// A window of the other process that is shown above all others.
    xcb_window_t show(const Rect& rect, std::uint32_t color, WindowOptions options = {});
    /// Draws into a window of any process that has no alpha channel, or a pixmap.
    void fill(xcb_drawable_t drawable, const Rect& rect, std::uint32_t color) const;
    /// Leaves of the window only these rectangles.
    void shape(xcb_window_t window, const std::vector<Rect>& rects) const;
    /// Without leaving a wallpaper.
    void setRootBackground(std::uint32_t color) const;
    /// A pixmap of the root's depth, filled with a colour.
    [[nodiscard]] xcb_pixmap_t pixmap(const Size& size, std::uint32_t color) const;
    /// Returns once the compositing manager is in charge, and this program knows.
    void startCompositor();
    void stopCompositor();

private:
    void waitForRedirection() const;
    [[nodiscard]] bool isRedirected(xcb_window_t window) const;

    std::optional<ChildProcess> compositor_;
};

} // namespace lumetry::desktop
