#pragma once

#include "base/lifetime.h"
#include "platform/linux/x11/capture/target.h"
#include "platform/linux/x11/connection/atoms.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/manager_selection.h"
#include "platform/linux/x11/windows/windows.h"

#include <xcb/render.h>

#include <array>
#include <cstddef>
#include <optional>

namespace lumetry::x11 {

/// The properties of the root window that name a wallpaper.
inline constexpr std::array wallpaperAtoms = {Atom::xrootPmapId, Atom::esetrootPmapId};

/// The pixmap that wallpaper setters leave on the root window, to be repeated from its origin on.
struct Wallpaper {
    xcb_pixmap_t pixmap = XCB_PIXMAP_NONE;
    xcb_render_pictformat_t format = 0;
};

/// Absent when there is none that can be read.
[[nodiscard]] std::optional<Wallpaper> findWallpaper(Connection& connection,
                                                     CaptureFormats& formats);

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
    Lifetime lifetime_;
    Token compositing_;
};

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
