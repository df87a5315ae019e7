#include "platform/linux/x11/overlay/surface.h"

#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <utility>

namespace lumetry::x11 {
namespace {

/// A large rectangle is drawn in bands of at most that many pixels, to bound what is held of it.
constexpr int pixelsPerBand = 128 * 1024;

std::vector<xcb_rectangle_t> asRectangles(std::span<const IntRect> rects) {
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(rects.size());
    for (const IntRect& rect : rects) {
        rectangles.push_back({static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
                              static_cast<std::uint16_t>(rect.width),
                              static_cast<std::uint16_t>(rect.height)});
    }
    return rectangles;
}

/// Rectangles of view space in the window, whose y grows downwards.
std::vector<IntRect> inWindow(std::span<const IntRect> rects, IntSize view) {
    std::vector<IntRect> turned;
    turned.reserve(rects.size());
    for (const IntRect& rect : rects) {
        turned.push_back(flipped(rect, view.height));
    }
    return turned;
}

/// Calls the function with so many rectangles at a time as fit into one request.
template<class Function>
void inRequests(std::span<const IntRect> rects, std::size_t maximumSize, Function function) {
    constexpr std::size_t requestHead = 64;
    const std::size_t most =
        std::max<std::size_t>((maximumSize - requestHead) / sizeof(xcb_rectangle_t), 1);
    const std::vector<xcb_rectangle_t> rectangles = asRectangles(rects);
    for (std::size_t i = 0; i < rectangles.size(); i += most) {
        const std::size_t count = std::min(most, rectangles.size() - i);
        function(static_cast<std::uint32_t>(count), &rectangles[i]);
    }
}

} // namespace

OverlaySurface::OverlaySurface(Connection& connection, xcb_window_t window,
                               const PixelFormat& format)
    : connection_(connection), window_(window), format_(format),
      context_(xcb_generate_id(connection.get())), shape_(xcb_generate_id(connection.get())) {
    const std::uint32_t noExposures = 0;
    xcb_create_gc(connection.get(), context_, window, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    xcb_xfixes_create_region(connection.get(), shape_, 0, nullptr);
    setEdges(Edges::hard);
}

OverlaySurface::~OverlaySurface() {
    xcb_free_gc(connection_.get(), context_);
    xcb_xfixes_destroy_region(connection_.get(), shape_);
}

void OverlaySurface::setEdges(Edges edges) {
    edges_ = edges;
    lastTouched_.clear();
    auto* const c = connection_.get();
    if (edges == Edges::hard) {
        // A background would show for a moment wherever the shape grows.
        const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
        xcb_change_window_attributes(c, window_, XCB_CW_BACK_PIXMAP, &none);
        clear();
    } else {
        const std::uint32_t transparent = 0;
        xcb_change_window_attributes(c, window_, XCB_CW_BACK_PIXEL, &transparent);
        xcb_xfixes_set_window_shape_region(c, window_, XCB_SHAPE_SK_BOUNDING, 0, 0,
                                           XCB_XFIXES_REGION_NONE);
    }
}

void OverlaySurface::clear() {
    lastTouched_.clear();
    if (edges_ == Edges::hard) {
        auto* const c = connection_.get();
        xcb_xfixes_set_region(c, shape_, 0, nullptr);
        xcb_xfixes_set_window_shape_region(c, window_, XCB_SHAPE_SK_BOUNDING, 0, 0, shape_);
    }
}

OverlaySurface::Batch OverlaySurface::prepare(const Painting& painting,
                                              const Rasterizer& rasterizer) const {
    const auto& [list, areas, view, before] = painting;
    const TilePlan plan = planTiles(list, areas, view, before);
    Batch batch;
    batch.touched = inWindow(plan.all(), view);
    if (edges_ == Edges::smooth && !plan.cleared.empty()) {
        batch.filled.push_back({0, inWindow(plan.cleared, view)});
    }
    for (const TilePlan::Uniform& uniform : plan.uniform) {
        const Bitmap sample =
            rasterizer.rasterize(list, toRect({uniform.sample.x, uniform.sample.y, 1, 1}), edges_);
        addFilled(batch, sample.at(0, 0), inWindow(uniform.areas, view));
    }
    for (const TilePlan::Striped& striped : plan.striped) {
        addStripes(batch, striped, rasterizer.rasterize(list, toRect(striped.sample), edges_),
                   view.height);
    }
    for (const IntRect& rect : plan.rasterized) {
        addPuts(batch, rect, painting, rasterizer);
    }
    return batch;
}

void OverlaySurface::addFilled(Batch& batch, std::uint32_t color,
                               std::span<const IntRect> areas) const {
    if (edges_ == Edges::hard) {
        if (!isOpaque(color)) {
            return;
        }
        batch.opaque.insert(batch.opaque.end(), areas.begin(), areas.end());
    }
    const std::uint32_t pixel = pixelOf(format_, color);
    auto filled = std::ranges::find(batch.filled, pixel, &Filled::pixel);
    if (filled == batch.filled.end()) {
        filled = batch.filled.insert(filled, {pixel, {}});
    }
    filled->areas.insert(filled->areas.end(), areas.begin(), areas.end());
}

void OverlaySurface::addStripes(Batch& batch, const TilePlan::Striped& striped,
                                const Bitmap& sample, std::int32_t viewHeight) const {
    const auto count = static_cast<std::int32_t>(sample.pixels.size());
    for (std::int32_t start = 0, end = 0; start < count; start = end) {
        const std::uint32_t color = sample.pixels[static_cast<std::size_t>(start)];
        while (end < count && sample.pixels[static_cast<std::size_t>(end)] == color) {
            ++end;
        }
        std::vector<IntRect> stripes;
        for (const IntRect& area : striped.areas) {
            IntRect stripe = flipped(area, viewHeight);
            if (striped.upright) {
                stripe.x += start;
                stripe.width = end - start;
            } else {
                stripe.y += start;
                stripe.height = end - start;
            }
            stripes.push_back(stripe);
        }
        addFilled(batch, color, stripes);
    }
}

void OverlaySurface::addPuts(Batch& batch, const IntRect& rect, const Painting& painting,
                             const Rasterizer& rasterizer) const {
    const int rows = std::max(pixelsPerBand / rect.width, 1);
    IntRect left = rect;
    while (!left.isEmpty()) {
        const IntRect band = {left.x, left.y, left.width, std::min(rows, left.height)};
        left.y += band.height;
        left.height -= band.height;
        Put one = {flipped(band, painting.view.height).origin(),
                   rasterizer.rasterize(painting.list, toRect(band), edges_)};
        if (edges_ == Edges::hard) {
            const auto parts = opaqueParts(one.bitmap, one.origin);
            batch.opaque.insert(batch.opaque.end(), parts.begin(), parts.end());
            if (parts.empty()) {
                continue;
            }
        }
        batch.puts.push_back(std::move(one));
    }
}

void OverlaySurface::paint(const Painting& painting, const Rasterizer& rasterizer) {
    Batch batch = prepare(painting, rasterizer);
    if (edges_ == Edges::hard) {
        reshape(batch);
    }
    lastPaintBegan_ = xcb_no_operation(connection_.get()).sequence;
    for (const Filled& filled : batch.filled) {
        fill(filled);
    }
    for (const Put& one : batch.puts) {
        put(one);
    }
    lastTouched_ = std::move(batch.touched);
}

void OverlaySurface::reshape(const Batch& batch) {
    // The server does the sums, and changes the window in one go: nothing of what stays flickers,
    // and no application below has to repaint.
    auto* const c = connection_.get();
    const xcb_xfixes_region_t part = xcb_generate_id(c);
    xcb_xfixes_create_region(c, part, 0, nullptr);
    const auto combine = [&](std::span<const IntRect> rects, auto operation) {
        inRequests(rects, connection_.maximumRequestSize(),
                   [&](std::uint32_t count, const xcb_rectangle_t* rectangles) {
                       xcb_xfixes_set_region(c, part, count, rectangles);
                       operation(c, shape_, part, shape_);
                   });
    };
    combine(batch.touched, xcb_xfixes_subtract_region);
    combine(batch.opaque, xcb_xfixes_union_region);
    xcb_xfixes_set_window_shape_region(c, window_, XCB_SHAPE_SK_BOUNDING, 0, 0, shape_);
    xcb_xfixes_destroy_region(c, part);
}

void OverlaySurface::fill(const Filled& filled) {
    auto* const c = connection_.get();
    if (foreground_ != filled.pixel) {
        foreground_ = filled.pixel;
        xcb_change_gc(c, context_, XCB_GC_FOREGROUND, &foreground_);
    }
    inRequests(filled.areas, connection_.maximumRequestSize(),
               [&](std::uint32_t count, const xcb_rectangle_t* rectangles) {
                   xcb_poly_fill_rectangle(c, window_, context_, count, rectangles);
               });
}

void OverlaySurface::put(const Put& put) {
    constexpr std::size_t requestHead = 64;
    const Bitmap& bitmap = put.bitmap;
    const std::size_t room = connection_.maximumRequestSize() - requestHead;
    const int rowsAtOnce =
        static_cast<int>(std::max<std::size_t>(room / bytesPerRow(format_, bitmap.width), 1));
    for (int row = 0; row < bitmap.height; row += rowsAtOnce) {
        const int rows = std::min(rowsAtOnce, bitmap.height - row);
        const auto bytes = packed(format_, bitmap, row, rows);
        xcb_put_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_,
                      static_cast<std::uint16_t>(bitmap.width), static_cast<std::uint16_t>(rows),
                      static_cast<std::int16_t>(put.origin.x),
                      static_cast<std::int16_t>(put.origin.y + row), 0, format_.depth,
                      static_cast<std::uint32_t>(bytes.size()), bytes.data());
    }
}

bool OverlaySurface::hasPainted(const xcb_generic_event_t& exposure) const {
    const auto& event = eventAs<xcb_expose_event_t>(exposure);
    const IntRect rect = {event.x, event.y, event.width, event.height};
    // Request numbers wrap around.
    const auto distance = static_cast<std::int32_t>(exposure.full_sequence - lastPaintBegan_);
    return distance < 0 && covers(lastTouched_, rect);
}

} // namespace lumetry::x11
