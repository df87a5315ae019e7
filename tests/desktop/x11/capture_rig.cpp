#include "capture_rig.h"

#include "rig/screenshot.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <stdexcept>

namespace lumetry::desktop {
namespace {

xcb_rectangle_t rectangleOf(const Rect& rect) {
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

} // namespace

CaptureRig::CaptureRig(const Options& options) : X11Rig(options) {
    if (options.compositor) {
        waitForRedirection();
    }
}

/// A compositing manager takes the windows over some time after it has announced itself, and what
/// has been drawn into them until then may be lost.
void CaptureRig::waitForRedirection() const {
    const auto window = ownWindow({0, 0, 1, 1}, {.overrideRedirect = true});
    map(window);
    requireUntil("the redirection of windows", [&] { return isRedirected(window); });
    destroy(window);
}

bool CaptureRig::isRedirected(xcb_window_t window) const {
    const auto pixmap = xcb_generate_id(xcb());
    const Reply<xcb_generic_error_t> error(
        xcb_request_check(xcb(), xcb_composite_name_window_pixmap_checked(xcb(), window, pixmap)));
    if (!error) {
        xcb_free_pixmap(xcb(), pixmap);
    }
    return !error;
}

Bitmap CaptureRig::captured(const Rect& area, std::uint32_t windowNumber) {
    loop.settle(std::chrono::milliseconds(1));
    auto bitmap = capture().captureBelow(area, windowNumber);
    if (!bitmap) {
        throw std::runtime_error("there is no capture");
    }
    return std::move(*bitmap);
}

void CaptureRig::awaitPixel(double x, double y, std::uint32_t color) {
    loop.requireUntil("the colour of a pixel", [&] {
        return screenshot(desktop.server(), {x, y, 1, 1}).at(0, 0) == color && pixel(x, y) == color;
    });
}

xcb_window_t CaptureRig::show(const Rect& rect, std::uint32_t color, WindowOptions options) {
    options.color = color;
    const auto window = foreignWindow(rect, options);
    map(window);
    raise(window);
    return window;
}

void CaptureRig::fill(xcb_drawable_t drawable, const Rect& rect, std::uint32_t color) const {
    const auto context = xcb_generate_id(xcb());
    const auto rectangle = rectangleOf(rect);
    const std::uint32_t pixel = desktop.server().pixelOf(color);
    xcb_create_gc(xcb(), context, drawable, XCB_GC_FOREGROUND, &pixel);
    xcb_poly_fill_rectangle(xcb(), drawable, context, 1, &rectangle);
    xcb_free_gc(xcb(), context);
    desktop.server().sync();
}

void CaptureRig::shape(xcb_window_t window, const std::vector<Rect>& rects) const {
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(rects.size());
    for (const Rect& rect : rects) {
        rectangles.push_back(rectangleOf(rect));
    }
    xcb_shape_rectangles(xcb(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, 0, window, 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    desktop.server().sync();
}

void CaptureRig::setRootBackground(std::uint32_t color) const {
    const auto root = desktop.server().root();
    const std::uint32_t pixel = desktop.server().pixelOf(color);
    xcb_change_window_attributes(xcb(), root, XCB_CW_BACK_PIXEL, &pixel);
    xcb_clear_area(xcb(), 0, root, 0, 0, 0, 0);
    desktop.server().sync();
}

xcb_pixmap_t CaptureRig::pixmap(const Size& size, std::uint32_t color) const {
    const auto made = xcb_generate_id(xcb());
    xcb_create_pixmap(xcb(), desktop.server().screen().root_depth, made, desktop.server().root(),
                      static_cast<std::uint16_t>(size.width),
                      static_cast<std::uint16_t>(size.height));
    fill(made, {0, 0, size.width, size.height}, color);
    return made;
}

void CaptureRig::startCompositor() {
    compositor_ = desktop.start({"picom", "--backend", "xrender", "--config", "/dev/null"});
    loop.requireUntil("the compositing manager",
                      [&] { return desktop.server().selectionOwner("_NET_WM_CM_S0") != XCB_NONE; });
    loop.settle();
}

void CaptureRig::stopCompositor() {
    compositor_->terminate();
    loop.requireUntil("its end",
                      [&] { return desktop.server().selectionOwner("_NET_WM_CM_S0") == XCB_NONE; });
    loop.settle();
}

} // namespace lumetry::desktop
