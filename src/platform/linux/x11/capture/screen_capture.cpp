#include "platform/linux/x11/capture/screen_capture.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace lumetry::x11 {
namespace {

/// Once nothing has been captured for that long, what is kept for it is given up.
constexpr double idleSeconds = 5;

/// A large capture is made in bands of at most that many pixels, to bound what is kept for it.
constexpr int pixelsPerBand = 1024 * 1024;

struct Chosen {
    std::vector<CaptureLayer> layers; ///< the lowest first
    bool hidesAll = false;            ///< nothing shows of what lies below them
};

/// The windows that the band shows anything of.
Chosen choose(std::span<const CaptureLayer> topmostFirst, const CaptureGrid& grid,
              const IntRect& band) {
    Chosen chosen;
    for (const CaptureLayer& layer : topmostFirst) {
        const IntRect pixels = intersect(grid.pixelsIn(layer.rect), band);
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

/// A pixel as it counts: what shows through to nothing for the most part is missing, all else is
/// opaque.
constexpr std::uint32_t counted(std::uint32_t pixel) {
    constexpr std::uint32_t leastAlpha = 0x80000000;
    constexpr std::uint32_t opaque = 0xFF000000;
    return pixel >= leastAlpha ? pixel | opaque : missingPixel;
}

/// Copies those words of a row that lie in the parts.
void copyRow(std::span<const std::uint32_t> words, const IntRect& row,
             std::span<const IntRect> parts, bool isSwapped, Bitmap& bitmap) {
    for (const IntRect& one : parts) {
        const IntRect part = intersect(one, row);
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
                                   [](auto word) { return counted(swapped(word)); });
        } else {
            std::ranges::transform(source, target, counted);
        }
    }
}

} // namespace

X11ScreenCapture::Workshop::Workshop(const CaptureSurroundings& surroundings)
    : redirection(surroundings.redirection.hold()),
      target(surroundings.connection, *surroundings.formats.translucent()),
      background(surroundings.connection, surroundings.formats, surroundings.backdrop),
      composer(surroundings.connection) {}

X11ScreenCapture::X11ScreenCapture(const CaptureSurroundings& surroundings)
    : surroundings_(surroundings), connection_(surroundings.connection) {}

std::optional<Bitmap> X11ScreenCapture::captureBelow(const Rect& area, std::uint32_t windowNumber) {
    const auto grid = CaptureGrid::of(onRoot(area));
    if (!grid) {
        return std::nullopt;
    }
    return capture(onScreens(*grid), windowNumber);
}

std::optional<Bitmap> X11ScreenCapture::captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size, Interpolation interpolation) {
    const auto grid = CaptureGrid::of(onRoot(area), size, interpolation);
    if (!grid) {
        return std::nullopt;
    }
    Wanted wanted = onScreens(*grid);
    if (surroundings_.compositingManager.isRunning() || surroundings_.redirection.isComplete()) {
        wanted.kept = {{0, 0, size.width, size.height}};
    }
    return capture(wanted, windowNumber);
}

X11ScreenCapture::Wanted X11ScreenCapture::onScreens(const CaptureGrid& grid) {
    Wanted wanted = {grid, surroundings_.windows.layout().screens, {}};
    for (const Rect& screen : wanted.screens) {
        wanted.kept.push_back(grid.pixelsIn(screen));
    }
    return wanted;
}

Rect X11ScreenCapture::onRoot(const Rect& area) {
    return surroundings_.windows.rootSpace().toRoot(area);
}

std::optional<Bitmap> X11ScreenCapture::capture(const Wanted& wanted, std::uint32_t windowNumber) {
    if (!openWorkshop()) {
        return std::nullopt;
    }
    Bitmap bitmap(wanted.grid.size().width, wanted.grid.size().height);
    IntRect all;
    for (const IntRect& part : wanted.kept) {
        if (!part.isEmpty()) {
            all = all.isEmpty() ? part : unite(all, part);
        }
    }
    if (all.isEmpty()) {
        return bitmap;
    }
    auto layers = layersBelow(windowNumber);
    const int rows = std::max(pixelsPerBand / all.width, 1);
    for (int y = all.y; y < all.y + all.height; y += rows) {
        const IntRect band = {all.x, y, all.width, std::min(rows, all.y + all.height - y)};
        if (!captureBand(wanted, band, layers, bitmap)) {
            return std::nullopt;
        }
    }
    return bitmap;
}

bool X11ScreenCapture::openWorkshop() {
    if (!surroundings_.windows.preflightScreenCaptureAccess() ||
        !surroundings_.formats.translucent()) {
        return false;
    }
    lastUsed_ = connection_.runLoop().now();
    if (!workshop_) {
        workshop_.emplace(surroundings_);
        closeWorkshopAfter(idleSeconds);
    }
    return true;
}

void X11ScreenCapture::closeWorkshopAfter(double seconds) {
    connection_.runLoop().after(seconds, lifetime_.guard([this] {
        const double idle = connection_.runLoop().now() - lastUsed_;
        if (idle < idleSeconds) {
            closeWorkshopAfter(idleSeconds - idle);
        } else {
            workshop_.reset();
            connection_.flush();
        }
    }));
}

std::vector<CaptureLayer> X11ScreenCapture::layersBelow(std::uint32_t windowNumber) {
    const bool blends = surroundings_.compositingManager.isRunning();
    std::vector<CaptureLayer> layers;
    for (const WindowRecord* const window : surroundings_.windows.visibleBelow(windowNumber)) {
        if (const auto format = surroundings_.formats.ofVisual(window->visual)) {
            layers.push_back({window->id, *format, window->rect, window->borderWidth,
                              window->shaped, blends && format->hasAlpha,
                              blends ? alphaOf(*window) : 1});
        }
    }
    return layers;
}

bool X11ScreenCapture::captureBand(const Wanted& wanted, const IntRect& band,
                                   std::vector<CaptureLayer>& topmostFirst, Bitmap& bitmap) {
    auto& [redirection, target, background, composer] = *workshop_;
    const IntSize size = {band.width, band.height};
    const bool isSwapped = hasOtherByteOrder(connection_);
    target.reserve(size);
    const CaptureComposer::Canvas canvas = {wanted.grid, band, target.picture()};
    for (;;) {
        const Chosen chosen = choose(topmostFirst, wanted.grid, band);
        composer.clear(canvas);
        const auto tile = chosen.hidesAll
                              ? std::nullopt
                              : background.picture(surroundings_.compositingManager.isRunning());
        if (tile) {
            composer.drawTile(canvas, *tile, wanted.screens);
        }
        composer.drawWindows(canvas, chosen.layers);
        const bool done = target.read(size, [&](int row, std::span<const std::uint32_t> words) {
            copyRow(words, {band.x, band.y + row, band.width, 1}, wanted.kept, isSwapped, bitmap);
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
