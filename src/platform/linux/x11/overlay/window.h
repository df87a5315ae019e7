#pragma once

#include "base/int_geometry.h"
#include "base/lifetime.h"
#include "platform/linux/x11/capture/background.h"
#include "platform/linux/x11/capture/redirection.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/manager_selection.h"
#include "platform/linux/x11/overlay/stay_on_top.h"
#include "platform/linux/x11/overlay/surface.h"
#include "platform/linux/x11/windows/windows.h"
#include "platform/overlay_window.h"
#include "platform/rasterizer.h"

#include <optional>
#include <vector>

namespace lumetry::x11 {

/// What overlay windows are made with.
struct OverlaySurroundings {
    Connection& connection;
    X11Windows& windows;
    CompositingManager& compositingManager;
    CaptureRedirection& captureRedirection;
    CaptureBackdrop& captureBackdrop;
    const Rasterizer& rasterizer;
};

/// A window that no window manager looks after. After each drawing its property _LUMETRY_TEXT
/// holds the texts on it, in drawing order, one a line; a hidden window has none.
class X11OverlayWindow final : public OverlayWindow {
public:
    X11OverlayWindow(const OverlaySurroundings& surroundings, const Rect& contentRect,
                     const OverlayWindowStyle& style);
    X11OverlayWindow(const X11OverlayWindow&) = delete;
    X11OverlayWindow& operator=(const X11OverlayWindow&) = delete;
    ~X11OverlayWindow() override;

    void setContentView(ContentView& view) override;
    [[nodiscard]] Rect frame() const override;
    void setFrame(const Rect& frame) override;
    [[nodiscard]] std::uint32_t windowNumber() const override { return window_; }
    void orderFrontRegardless() override;
    void orderOut() override;
    void setNeedsDisplay() override;

private:
    void createWindow();
    void describeWindow(const OverlayWindowStyle& style);
    [[nodiscard]] Edges wantedEdges() const;
    void handle(const xcb_generic_event_t& event);
    void repaintEverything();
    void scheduleRepaint();
    void repaint();
    [[nodiscard]] DisplayList drawView();
    void publishTexts();

    OverlaySurroundings surroundings_;
    Connection& connection_;
    PixelFormat format_;
    IntRect onRoot_; ///< its frame in device pixels: there it stays when the screens move
    xcb_window_t window_ = XCB_WINDOW_NONE;
    xcb_colormap_t colormap_ = XCB_COLORMAP_NONE;
    std::optional<OverlaySurface> surface_;
    std::optional<StayOnTop> stayOnTop_; ///< while it is shown
    Token captureRedirection_;           ///< likewise
    Token captureBackdrop_;              ///< likewise
    ContentView* view_ = nullptr;

    DisplayList shown_;           ///< what the window shows, in pixels
    std::vector<Rect> uncovered_; ///< pixels of its view space; what has to be put in again
    bool viewChanged_ = false;
    bool repaintScheduled_ = false;
    Lifetime lifetime_;
    Token events_;
    Token compositing_;
    Token scaleChange_;
};

} // namespace lumetry::x11
