#include "platform/linux/x11/capture.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <span>
#include <utility>

namespace lumetry::x11 {
namespace {

/// Once nothing has been captured for that long, what is kept for it is given up.
constexpr double idleSeconds = 5;

/// A large capture is made in bands of at most that many pixels, to bound what is kept for it.
constexpr int pixelsPerBand = 1024 * 1024;

std::uint32_t swapped(std::uint32_t word) {
    return (word >> 24U) | ((word >> 8U) & 0xFF00U) | ((word << 8U) & 0xFF0000U) | (word << 24U);
}

/// Whether the server's words have their bytes in the other order than this machine's.
bool hasOtherByteOrder(const Connection& connection) {
    const bool isBig =
        xcb_get_setup(connection.get())->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    return isBig != (std::endian::native == std::endian::big);
}

struct Chosen {
    std::vector<CaptureLayer> layers; ///< the lowest first
    bool hidesAll = false;            ///< nothing shows of what lies below them
};

/// The windows that the band shows anything of.
Chosen choose(std::span<const CaptureLayer> topmostFirst, const CaptureGrid& grid,
              const PixelRect& band) {
    Chosen chosen;
    for (const CaptureLayer& layer : topmostFirst) {
        const PixelRect pixels = intersect(grid.pixelsIn(layer.rect), band);
        if (pixels.isEmpty()) {
            continue;
        }
        chosen.layers.push_back(layer);
        chosen.hidesAll = pixels == band && layer.isOpaque();
        if (chosen.hidesAll) {
            break;
        }
    }
    std::ranges::reverse(chosen.layers);
    return chosen;
}

/// Copies those words of a row that lie on a screen, as opaque pixels.
void copyRow(std::span<const std::uint32_t> words, const PixelRect& row,
             std::span<const PixelRect> onScreens, bool isSwapped, Bitmap& bitmap) {
    constexpr std::uint32_t opaque = 0xFF000000;
    for (const PixelRect& screen : onScreens) {
        const PixelRect part = intersect(screen, row);
        if (part.isEmpty()) {
            continue;
        }
        const auto source = words.subspan(static_cast<std::size_t>(part.x - row.x),
                                          static_cast<std::size_t>(part.width));
        const auto target =
            bitmap.pixels.begin() + static_cast<std::ptrdiff_t>(row.y) * bitmap.width + part.x;
        // The question is not asked for each word.
        if (isSwapped) {
            std::ranges::transform(source, target,
                                   [](auto word) { return swapped(word) | opaque; });
        } else {
            std::ranges::transform(source, target, [](auto word) { return word | opaque; });
        }
    }
}

} // namespace

X11ScreenCapture::Workshop::Workshop(Connection& connection, CaptureRedirection& redirecting,
                                     const CaptureFormats& formats)
    : redirection(redirecting.hold()), target(connection, *formats.translucent()),
      background(connection, formats), composer(connection) {}

X11ScreenCapture::X11ScreenCapture(Connection& connection, X11Windows& windows,
                                   CompositingManager& compositingManager,
                                   CaptureRedirection& redirection)
    : connection_(connection), windows_(windows), compositingManager_(compositingManager),
      redirection_(redirection) {}

std::optional<Bitmap> X11ScreenCapture::captureBelow(const Rect& area, std::uint32_t windowNumber) {
    const auto grid = CaptureGrid::of(onRoot(area));
    return grid ? capture(*grid, windowNumber) : std::nullopt;
}

std::optional<Bitmap> X11ScreenCapture::captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     PixelSize size, Interpolation interpolation) {
    const auto grid = CaptureGrid::of(onRoot(area), size, interpolation);
    return grid ? capture(*grid, windowNumber) : std::nullopt;
}

Rect X11ScreenCapture::onRoot(const Rect& area) {
    const Point origin = windows_.accessibilityOrigin();
    return {area.x + origin.x, area.y + origin.y, area.width, area.height};
}

std::optional<Bitmap> X11ScreenCapture::capture(const CaptureGrid& grid,
                                                std::uint32_t windowNumber) {
    if (!openWorkshop()) {
        return std::nullopt;
    }
    Bitmap bitmap(grid.size().width, grid.size().height);
    std::vector<PixelRect> onScreens;
    PixelRect all;
    for (const Rect& screen : windows_.layout().screens) {
        onScreens.push_back(grid.pixelsIn(screen));
        all = unite(all, onScreens.back());
    }
    if (all.isEmpty()) {
        return bitmap;
    }
    auto layers = layersBelow(windowNumber);
    const int rows = std::max(pixelsPerBand / all.width, 1);
    for (int y = all.y; y < all.y + all.height; y += rows) {
        const PixelRect band = {all.x, y, all.width, std::min(rows, all.y + all.height - y)};
        if (!captureBand(grid, band, layers, onScreens, bitmap)) {
            return std::nullopt;
        }
    }
    return bitmap;
}

bool X11ScreenCapture::openWorkshop() {
    if (!windows_.preflightScreenCaptureAccess()) {
        return false;
    }
    if (!formats_) {
        formats_.emplace(connection_);
    }
    if (!formats_->translucent()) {
        return false;
    }
    lastUsed_ = connection_.runLoop().now();
    if (!workshop_) {
        workshop_.emplace(connection_, redirection_, *formats_);
        closeWorkshopAfter(idleSeconds);
    }
    return true;
}

void X11ScreenCapture::closeWorkshopAfter(double seconds) {
    connection_.runLoop().after(seconds, [self = std::weak_ptr(self_)] {
        const auto alive = self.lock();
        if (!alive) {
            return;
        }
        X11ScreenCapture& capture = **alive;
        const double idle = capture.connection_.runLoop().now() - capture.lastUsed_;
        if (idle < idleSeconds) {
            capture.closeWorkshopAfter(idleSeconds - idle);
        } else {
            capture.workshop_.reset();
            capture.connection_.flush();
        }
    });
}

std::vector<CaptureLayer> X11ScreenCapture::layersBelow(std::uint32_t windowNumber) const {
    const bool blends = compositingManager_.isRunning();
    std::vector<CaptureLayer> layers;
    for (const WindowRecord* const window : windows_.visibleBelow(windowNumber)) {
        if (const auto format = formats_->ofVisual(window->visual)) {
            layers.push_back({window->id, *format, window->rect, window->borderWidth,
                              window->shaped, blends && format->hasAlpha,
                              blends ? alphaOf(*window) : 1});
        }
    }
    return layers;
}

bool X11ScreenCapture::captureBand(const CaptureGrid& grid, const PixelRect& band,
                                   std::vector<CaptureLayer>& topmostFirst,
                                   std::span<const PixelRect> onScreens, Bitmap& bitmap) {
    auto& [redirection, target, background, composer] = *workshop_;
    const PixelSize size = {band.width, band.height};
    const bool isSwapped = hasOtherByteOrder(connection_);
    target.reserve(size);
    const CaptureComposer::Canvas canvas = {grid, band, target.picture()};
    for (;;) {
        const Chosen chosen = choose(topmostFirst, grid, band);
        composer.clear(canvas);
        const auto tile =
            chosen.hidesAll ? std::nullopt : background.picture(compositingManager_.isRunning());
        if (tile) {
            composer.drawTile(canvas, *tile);
        }
        composer.drawWindows(canvas, chosen.layers);
        const bool done = target.read(size, [&](int row, std::span<const std::uint32_t> words) {
            copyRow(words, {band.x, band.y + row, band.width, 1}, onScreens, isSwapped, bitmap);
        });
        const auto gone = composer.takeFailures();
        if (!done || gone.empty()) {
            return done;
        }
        // What they hid has to be drawn.
        std::erase_if(topmostFirst, [&gone](const CaptureLayer& layer) {
            return std::ranges::find(gone, layer.window) != gone.end();
        });
    }
}

} // namespace lumetry::x11
