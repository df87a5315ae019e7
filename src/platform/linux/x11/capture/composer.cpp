#include "platform/linux/x11/capture/composer.h"

#include <xcb/composite.h>

#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace lumetry::x11 {
namespace {

/// RENDER's numbers of 1/65536.
xcb_render_fixed_t fixedOf(double value) {
    constexpr double one = 65536;
    return static_cast<xcb_render_fixed_t>(std::lround(value * one));
}

IntRect pixelsOf(const CaptureComposer::Canvas& canvas, const Rect& onRoot) {
    return intersect(canvas.grid.pixelsIn(onRoot), canvas.band);
}

xcb_rectangle_t inBand(const IntRect& pixels, const IntRect& band) {
    return {static_cast<std::int16_t>(pixels.x - band.x),
            static_cast<std::int16_t>(pixels.y - band.y), static_cast<std::uint16_t>(pixels.width),
            static_cast<std::uint16_t>(pixels.height)};
}

} // namespace

CaptureComposer::CaptureComposer(Connection& connection)
    : connection_(connection), pixmap_(xcb_generate_id(connection.get())),
      source_(xcb_generate_id(connection.get())), opacity_(xcb_generate_id(connection.get())) {}

void CaptureComposer::clear(const Canvas& canvas) {
    const xcb_rectangle_t all = inBand(canvas.band, canvas.band);
    xcb_render_fill_rectangles(connection_.get(), XCB_RENDER_PICT_OP_SRC, canvas.picture,
                               {0, 0, 0, 0}, 1, &all);
}

void CaptureComposer::fillBlack(const Canvas& canvas, const Rect& onRoot) {
    const xcb_rectangle_t rectangle = inBand(pixelsOf(canvas, onRoot), canvas.band);
    xcb_render_fill_rectangles(connection_.get(), XCB_RENDER_PICT_OP_SRC, canvas.picture,
                               {0, 0, 0, 0xFFFF}, 1, &rectangle);
}

void CaptureComposer::drawTile(const Canvas& canvas, xcb_render_picture_t tile,
                               std::span<const Rect> screens) {
    for (const Rect& screen : screens) {
        composite(canvas, tile, XCB_NONE, XCB_RENDER_PICT_OP_OVER, screen, {});
    }
    transform(tile, {1, 1}, {}, Interpolation::none);
}

void CaptureComposer::drawWindows(const Canvas& canvas, std::span<const CaptureLayer> layers) {
    std::vector<std::optional<xcb_shape_get_rectangles_cookie_t>> requests;
    requests.reserve(layers.size());
    for (const CaptureLayer& layer : layers) {
        auto& request = requests.emplace_back();
        if (layer.shaped) {
            request =
                xcb_shape_get_rectangles(connection_.get(), layer.window, XCB_SHAPE_SK_BOUNDING);
        }
    }
    for (std::size_t i = 0; i < layers.size(); ++i) {
        if (!requests[i]) {
            drawWindow(canvas, layers[i]);
        } else if (const auto shape =
                       connection_.reply(xcb_shape_get_rectangles_reply, *requests[i])) {
            clipToShape(canvas, layers[i], *shape);
            drawWindow(canvas, layers[i]);
            clipToNothing(canvas);
        }
    }
}

void CaptureComposer::clipToShape(const Canvas& canvas, const CaptureLayer& layer,
                                  const xcb_shape_get_rectangles_reply_t& shape) {
    const Point origin = {layer.rect.x + layer.borderWidth, layer.rect.y + layer.borderWidth};
    const auto* const first = xcb_shape_get_rectangles_rectangles(&shape);
    std::vector<xcb_rectangle_t> parts;
    for (const xcb_rectangle_t& part : std::span(
             first, static_cast<std::size_t>(xcb_shape_get_rectangles_rectangles_length(&shape)))) {
        const IntRect pixels =
            pixelsOf(canvas, {origin.x + part.x, origin.y + part.y, static_cast<double>(part.width),
                              static_cast<double>(part.height)});
        if (!pixels.isEmpty()) {
            parts.push_back(inBand(pixels, canvas.band));
        }
    }
    constexpr std::size_t requestHead = 64;
    const std::size_t most =
        (connection_.maximumRequestSize() - requestHead) / sizeof(xcb_rectangle_t);
    if (parts.size() > most) {
        // More pieces than the server takes at once.
        parts.resize(most);
    }
    xcb_render_set_picture_clip_rectangles(connection_.get(), canvas.picture, 0, 0,
                                           static_cast<std::uint32_t>(parts.size()), parts.data());
}

void CaptureComposer::clipToNothing(const Canvas& canvas) {
    const std::uint32_t none = XCB_PIXMAP_NONE;
    xcb_render_change_picture(connection_.get(), canvas.picture, XCB_RENDER_CP_CLIP_MASK, &none);
}

void CaptureComposer::drawWindow(const Canvas& canvas, const CaptureLayer& layer) {
    auto* const c = connection_.get();
    attempts_.push_back(
        {layer.window, xcb_composite_name_window_pixmap_checked(c, layer.window, pixmap_)});
    // At its edges a window is not blended with what lies behind it.
    const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
    xcb_render_create_picture(c, source_, pixmap_, layer.format.id,
                              canvas.grid.isPlain() ? 0 : XCB_RENDER_CP_REPEAT, &repeat);
    const bool veiled = layer.opacity < 1;
    if (veiled) {
        constexpr double opaque = 0xFFFF;
        xcb_render_create_solid_fill(
            c, opacity_,
            {0, 0, 0, static_cast<std::uint16_t>(std::lround(layer.opacity * opaque))});
    }
    // Without a compositing manager, a window with an alpha channel shows its colours as they are,
    // whatever its alpha is.
    const bool bare = layer.format.hasAlpha && !layer.translucent;
    if (bare) {
        fillBlack(canvas, layer.rect);
    }
    composite(canvas, source_, veiled ? opacity_ : xcb_render_picture_t{XCB_NONE},
              bare ? XCB_RENDER_PICT_OP_ADD : XCB_RENDER_PICT_OP_OVER, layer.rect,
              layer.rect.origin());
    if (veiled) {
        xcb_render_free_picture(c, opacity_);
    }
    xcb_render_free_picture(c, source_);
    xcb_free_pixmap(c, pixmap_);
}

void CaptureComposer::composite(const Canvas& canvas, xcb_render_picture_t source,
                                xcb_render_picture_t mask, std::uint8_t operation,
                                const Rect& onRoot, Point sourceOrigin) {
    const IntRect pixels = pixelsOf(canvas, onRoot);
    if (pixels.isEmpty()) {
        return;
    }
    const Point place = canvas.grid.placeOf(pixels.x, pixels.y);
    Point start = {place.x - sourceOrigin.x, place.y - sourceOrigin.y};
    if (!canvas.grid.isPlain()) {
        transform(source, canvas.grid.step(), std::exchange(start, {}),
                  canvas.grid.interpolation());
    }
    const xcb_rectangle_t target = inBand(pixels, canvas.band);
    xcb_render_composite(connection_.get(), operation, source, mask, canvas.picture,
                         static_cast<std::int16_t>(start.x), static_cast<std::int16_t>(start.y), 0,
                         0, target.x, target.y, target.width, target.height);
}

void CaptureComposer::transform(xcb_render_picture_t source, Size step, Point start,
                                Interpolation interpolation) {
    const xcb_render_transform_t matrix = {
        fixedOf(step.width), 0, fixedOf(start.x), 0, fixedOf(step.height), fixedOf(start.y), 0, 0,
        fixedOf(1)};
    xcb_render_set_picture_transform(connection_.get(), source, matrix);
    const std::string_view filter = interpolation == Interpolation::none ? "nearest" : "bilinear";
    xcb_render_set_picture_filter(connection_.get(), source,
                                  static_cast<std::uint16_t>(filter.size()), filter.data(), 0,
                                  nullptr);
}

std::vector<xcb_window_t> CaptureComposer::takeFailures() {
    std::vector<xcb_window_t> failures;
    for (const Attempt& attempt : std::exchange(attempts_, {})) {
        if (connection_.failed(attempt.cookie)) {
            failures.push_back(attempt.window);
        }
    }
    return failures;
}

} // namespace lumetry::x11
