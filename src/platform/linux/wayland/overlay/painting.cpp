#include "platform/linux/wayland/overlay/painting.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace lumetry::wayland {
namespace {

/// A large rectangle is drawn in bands of at most that many pixels, to bound what is held of it.
constexpr int pixelsPerBand = 128 * 1024;

/// @param row counted from the top
std::span<std::uint32_t> part(const Pixels& pixels, const IntRect& rect, int row) {
    const auto start =
        static_cast<std::size_t>(rect.y + row) * static_cast<std::size_t>(pixels.size.width) +
        static_cast<std::size_t>(rect.x);
    return {pixels.first + start, static_cast<std::size_t>(rect.width)};
}

/// @param area of view space, like all here
void fill(const Pixels& pixels, const IntRect& area, std::uint32_t color) {
    const IntRect rect = flipped(area, pixels.size.height);
    for (int row = 0; row < rect.height; ++row) {
        std::ranges::fill(part(pixels, rect, row), color);
    }
}

void fillStripes(const Pixels& pixels, const TilePlan::Striped& striped, const Bitmap& sample) {
    for (const IntRect& area : striped.areas) {
        const IntRect rect = flipped(area, pixels.size.height);
        for (int row = 0; row < rect.height; ++row) {
            if (striped.upright) {
                std::ranges::copy(sample.pixels, part(pixels, rect, row).begin());
            } else {
                std::ranges::fill(part(pixels, rect, row), sample.at(0, row));
            }
        }
    }
}

void copy(const Pixels& pixels, const IntRect& area, const Bitmap& bitmap) {
    const IntRect rect = flipped(area, pixels.size.height);
    const auto width = static_cast<std::ptrdiff_t>(rect.width);
    auto source = bitmap.pixels.begin();
    for (int row = 0; row < rect.height; ++row, source += width) {
        std::copy(source, source + width, part(pixels, rect, row).begin());
    }
}

void rasterize(const Pixels& pixels, const IntRect& area, const DisplayList& list,
               const Rasterizer& rasterizer) {
    const int rows = std::max(pixelsPerBand / area.width, 1);
    IntRect left = area;
    while (!left.isEmpty()) {
        const IntRect band = {left.x, left.y, left.width, std::min(rows, left.height)};
        left.y += band.height;
        left.height -= band.height;
        copy(pixels, band, rasterizer.rasterize(list, toRect(band), Edges::smooth));
    }
}

} // namespace

void paintTiles(const Pixels& pixels, const TilePlan& plan, const DisplayList& list,
                const Rasterizer& rasterizer) {
    for (const IntRect& area : plan.cleared) {
        fill(pixels, area, 0);
    }
    for (const TilePlan::Uniform& uniform : plan.uniform) {
        const IntRect sample = {uniform.sample.x, uniform.sample.y, 1, 1};
        const Bitmap pixel = rasterizer.rasterize(list, toRect(sample), Edges::smooth);
        for (const IntRect& area : uniform.areas) {
            fill(pixels, area, pixel.at(0, 0));
        }
    }
    for (const TilePlan::Striped& striped : plan.striped) {
        fillStripes(pixels, striped,
                    rasterizer.rasterize(list, toRect(striped.sample), Edges::smooth));
    }
    for (const IntRect& area : plan.rasterized) {
        rasterize(pixels, area, list, rasterizer);
    }
}

} // namespace lumetry::wayland
