#include "support/pictures/pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <random>

namespace lumetry {
namespace {

void setPixel(Bitmap& bitmap, int x, int y, std::uint32_t pixel) {
    if (x >= 0 && y >= 0 && x < bitmap.width && y < bitmap.height) {
        bitmap.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.width) +
                      static_cast<std::size_t>(x)] = pixel;
    }
}

/// How far the centre of a pixel lies outside the stretch between the centres of two corners.
double outside(int at, int length, int radius) {
    const double centre = at + 0.5;
    return std::max({radius - centre, centre - (length - radius), 0.0});
}

} // namespace

bool isNear(std::uint32_t a, std::uint32_t b, int tolerance) {
    constexpr std::array shifts = {0U, 8U, 16U, 24U};
    return std::ranges::all_of(shifts, [=](unsigned shift) {
        const int difference =
            static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF);
        return std::abs(difference) <= tolerance;
    });
}

Bitmap evenBitmap(int width, int height, std::uint32_t rgb) {
    Bitmap bitmap(width, height);
    std::ranges::fill(bitmap.pixels, opaque(rgb));
    return bitmap;
}

void fillRect(Bitmap& bitmap, const PixelRect& rect, std::uint32_t rgb) {
    fillRoundedRect(bitmap, rect, 0, rgb);
}

void fillRoundedRect(Bitmap& bitmap, const PixelRect& rect, int radius, std::uint32_t rgb) {
    for (int y = 0; y < rect.height; ++y) {
        for (int x = 0; x < rect.width; ++x) {
            if (std::hypot(outside(x, rect.width, radius), outside(y, rect.height, radius)) <=
                radius) {
                setPixel(bitmap, rect.x + x, rect.y + y, opaque(rgb));
            }
        }
    }
}

void drawStrokes(Bitmap& bitmap, const PixelRect& rect, std::uint32_t rgb) {
    constexpr int strokeWidth = 2;
    constexpr int strokeHeight = 9;
    constexpr int strokeSpacing = 6;
    constexpr int lineHeight = 16;
    for (int y = 0; y + strokeHeight <= rect.height; y += lineHeight) {
        for (int x = 0; x + strokeWidth <= rect.width; x += strokeSpacing) {
            fillRect(bitmap, {rect.x + x, rect.y + y, strokeWidth, strokeHeight}, rgb);
        }
    }
}

Bitmap photoLikeBitmap(int width, int height) {
    constexpr double waveLength = 40;
    constexpr double amplitude = 96;
    Bitmap bitmap(width, height);
    std::minstd_rand random(1); // the same picture every time
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto channel = [&](double phase) {
                const double wave = std::sin((x + phase * y) / waveLength + phase);
                const int noise = static_cast<int>(random() % 24);
                return static_cast<std::uint32_t>(128 + amplitude * wave) +
                       static_cast<std::uint32_t>(noise);
            };
            setPixel(bitmap, x, y,
                     opaque((channel(0.3) << 16U) | (channel(1.1) << 8U) | channel(2.2)));
        }
    }
    return bitmap;
}

} // namespace lumetry
