#pragma once

#include "platform/linux/x11/capture_formats.h"
#include "platform/linux/x11/connection.h"

#include <xcb/render.h>

#include <optional>

namespace lumetry::x11 {

/// What the root window shows where no window is: the pixmap that wallpaper setters leave on it,
/// else its own background. What a compositing manager shows there without a wallpaper is its own
/// affair, and in no window's pixels.
class CaptureBackground {
public:
    CaptureBackground(Connection& connection, const CaptureFormats& formats);
    CaptureBackground(const CaptureBackground&) = delete;
    CaptureBackground& operator=(const CaptureBackground&) = delete;
    ~CaptureBackground();

    /// A tile to be repeated from the root window's origin on. Absent when there is none to be had.
    /// @param isComposited a compositing manager is running
    [[nodiscard]] std::optional<xcb_render_picture_t> picture(bool isComposited);

private:
    [[nodiscard]] bool takeWallpaper();
    void takeProbe();
    void makeProbe();
    void destroyProbe();
    void makeTile(xcb_pixmap_t pixmap, xcb_render_pictformat_t format);
    void freeTile();

    Connection& connection_;
    const CaptureFormats& formats_;
    xcb_render_picture_t tile_;
    bool hasTile_ = false;
    bool isDirty_ = true;
    bool wasComposited_ = false;
    xcb_window_t probe_ = XCB_WINDOW_NONE;
    Token rootEvents_;
    Token events_;
};

} // namespace lumetry::x11
