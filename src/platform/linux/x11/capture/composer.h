#pragma once

#include "platform/linux/x11/capture/grid.h"
#include "platform/linux/x11/capture/target.h"
#include "platform/linux/x11/connection/connection.h"

#include <xcb/render.h>
#include <xcb/shape.h>

#include <cstdint>
#include <span>
#include <vector>

namespace lumetry::x11 {

/// A window as it goes into a capture.
struct CaptureLayer {
    xcb_window_t window = XCB_WINDOW_NONE;
    CaptureFormats::Format format;
    Rect rect; ///< root coordinates, border included
    double borderWidth = 0;
    bool shaped = false;
    bool translucent = false; ///< its pixels' alpha counts
    double opacity = 1;

    /// Whether nothing shows through it anywhere.
    [[nodiscard]] bool isOpaque() const { return !shaped && !translucent && opacity >= 1; }
};

/// Has the server draw windows and other things over each other into a picture.
class CaptureComposer {
public:
    struct Canvas {
        const CaptureGrid& grid;
        IntRect band;                            ///< of the grid's pixels, those to be drawn
        xcb_render_picture_t picture = XCB_NONE; ///< its origin is that of the band
    };

    explicit CaptureComposer(Connection& connection);

    /// From then on it is transparent where nothing has been drawn.
    void clear(const Canvas& canvas);
    /// Repeats a tile from the root window's origin on.
    /// @param tile repeats itself where it is to, and has no transformation
    /// @param screens root coordinates; nothing is drawn elsewhere
    void drawTile(const Canvas& canvas, xcb_render_picture_t tile, std::span<const Rect> screens);
    /// Waits for the server only when a window is not rectangular.
    /// @param layers the lowest first
    void drawWindows(const Canvas& canvas, std::span<const CaptureLayer> layers);
    /// Those of the windows drawn since the last call that could not be drawn. Does not wait when
    /// something asked for later has been answered.
    [[nodiscard]] std::vector<xcb_window_t> takeFailures();

private:
    struct Attempt {
        xcb_window_t window;
        xcb_void_cookie_t cookie;
    };

    void fillBlack(const Canvas& canvas, const Rect& onRoot);
    void drawWindow(const Canvas& canvas, const CaptureLayer& layer);
    void clipToShape(const Canvas& canvas, const CaptureLayer& layer,
                     const xcb_shape_get_rectangles_reply_t& shape);
    void clipToNothing(const Canvas& canvas);
    void composite(const Canvas& canvas, xcb_render_picture_t source, xcb_render_picture_t mask,
                   std::uint8_t operation, const Rect& onRoot, Point sourceOrigin);
    void transform(xcb_render_picture_t source, Size step, Point start,
                   Interpolation interpolation);

    Connection& connection_;
    // Used again for one window after the other.
    xcb_pixmap_t pixmap_;
    xcb_render_picture_t source_;
    xcb_render_picture_t opacity_;
    std::vector<Attempt> attempts_;
};

} // namespace lumetry::x11
