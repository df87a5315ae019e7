#pragma once

#include "platform/linux/x11/capture/backdrop.h"
#include "platform/linux/x11/capture/formats.h"
#include "platform/linux/x11/connection/connection.h"

#include <xcb/render.h>

#include <optional>

namespace lumetry::x11 {

/// What the screen shows where no window is: the pixmap that wallpaper setters leave on the root
/// window, else what a compositing manager draws there, else the root window's own background.
class CaptureBackground {
public:
    CaptureBackground(Connection& connection, CaptureFormats& formats, CaptureBackdrop& backdrop);
    CaptureBackground(const CaptureBackground&) = delete;
    CaptureBackground& operator=(const CaptureBackground&) = delete;
    ~CaptureBackground();

    /// A tile to be repeated from the root window's origin on. Absent when there is none to be had.
    /// @param isComposited a compositing manager is running
    [[nodiscard]] std::optional<xcb_render_picture_t> picture(bool isComposited);

private:
    void takeProbe();
    void makeProbe();
    void destroyProbe();
    void makeTile(xcb_pixmap_t pixmap, xcb_render_pictformat_t format);
    void freeTile();

    Connection& connection_;
    CaptureFormats& formats_;
    CaptureBackdrop& backdrop_;
    xcb_render_picture_t tile_;
    bool hasTile_ = false;
    bool isDirty_ = true;
    bool wasComposited_ = false;
    xcb_window_t probe_ = XCB_WINDOW_NONE;
    Token rootEvents_;
    Token events_;
};

} // namespace lumetry::x11
