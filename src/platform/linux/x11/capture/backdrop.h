#pragma once

#include "platform/linux/x11/capture/formats.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/manager_selection.h"
#include "platform/linux/x11/windows/windows.h"

#include <xcb/render.h>

#include <cstddef>
#include <optional>

namespace lumetry::x11 {

/// What a compositing manager shows where no window lies and nobody has left a wallpaper. It is the
/// manager's own drawing and in no window's pixels, so that it is taken off the screen. Once an
/// overlay lies on the screen nothing can be taken any more: the overlay would be in it, for a
/// while even after it has gone, until the manager has drawn the screen anew.
class CaptureBackdrop {
public:
    CaptureBackdrop(Connection& connection, X11Windows& windows,
                    CompositingManager& compositingManager, CaptureFormats& formats);
    CaptureBackdrop(const CaptureBackdrop&) = delete;
    CaptureBackdrop& operator=(const CaptureBackdrop&) = delete;
    ~CaptureBackdrop();

    /// Takes it. To be held from before an overlay appears until it has gone.
    [[nodiscard]] Token holdForOverlay();
    /// As large as the root window. What windows covered when it was taken has the colour that most
    /// of the rest has; without such a colour it is transparent. Absent when there is nothing.
    [[nodiscard]] std::optional<xcb_render_picture_t> picture();
    /// Gives up what is kept for captures alone.
    void rest();

private:
    void overlayGone();
    [[nodiscard]] bool isScreenClear() const;
    void take();
    [[nodiscard]] bool copyScreen();
    void clipToBareScreen();
    [[nodiscard]] bool fillTheRest();
    void free();

    Connection& connection_;
    X11Windows& windows_;
    CompositingManager& compositingManager_;
    CaptureFormats& formats_;
    xcb_pixmap_t pixmap_;
    xcb_render_picture_t picture_;
    bool isTaken_ = false;
    std::optional<double> takenAt_; ///< RunLoop::now of the last attempt
    std::size_t overlays_ = 0;      ///< on the screen
    std::optional<double> clearAt_; ///< RunLoop::now; when the last overlay is sure to have gone
    /// Empty once this object is gone: tokens may outlive it.
    Lifetime lifetime_;
    Token compositing_;
};

} // namespace lumetry::x11
