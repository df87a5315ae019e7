#pragma once

#include "base/bitmap.h"

#include <cstdint>

namespace lumetry {

/// An opaque pixel from 0xRRGGBB.
constexpr std::uint32_t opaque(std::uint32_t rgb) {
    return 0xFF000000U | rgb;
}

/// Whether each component of two colours, 0xAARRGGBB, is the same but for that much.
[[nodiscard]] bool isNear(std::uint32_t a, std::uint32_t b, int tolerance = 1);

/// A rectangle of pixels.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// A bitmap of one colour.
[[nodiscard]] Bitmap evenBitmap(int width, int height, std::uint32_t rgb);
/// Paints a rectangle; what lies outside the bitmap is left out.
void fillRect(Bitmap& bitmap, const PixelRect& rect, std::uint32_t rgb);
/// The same with corners cut round: the pixels whose centres lie outside the quarter circles stay.
void fillRoundedRect(Bitmap& bitmap, const PixelRect& rect, int radius, std::uint32_t rgb);
/// Marks like those of a line of text: strokes 2 pixels wide and 9 high, without anti-aliasing.
void drawStrokes(Bitmap& bitmap, const PixelRect& rect, std::uint32_t rgb);
/// A picture in which no colour dominates: slow waves of colour with noise on them.
[[nodiscard]] Bitmap photoLikeBitmap(int width, int height);

} // namespace lumetry
