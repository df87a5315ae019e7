#pragma once

#include "base/bitmap.h"
#include "base/color.h"
#include "base/geometry.h"

#include <cstdint>
#include <optional>

namespace lumetry {

class ScreenCapture;

/// The red, green and blue of a pixel, 0 to 255 each. Alpha is left out.
struct PixelColor {
    int red = 0;
    int green = 0;
    int blue = 0;

    friend bool operator==(const PixelColor&, const PixelColor&) = default;
};

[[nodiscard]] constexpr PixelColor pixelColor(std::uint32_t pixel) {
    return {static_cast<int>((pixel >> 16U) & 0xFFU), static_cast<int>((pixel >> 8U) & 0xFFU),
            static_cast<int>(pixel & 0xFFU)};
}

/// The same as an opaque sRGB colour.
[[nodiscard]] Color opaqueColor(const PixelColor& pixel);

/// The colour on screen at a point, below the window. Absent when it cannot be read, and on no
/// screen.
/// @param point accessibility space
[[nodiscard]] std::optional<Color> sampleColor(ScreenCapture& capture, std::uint32_t windowNumber,
                                               Point point);

} // namespace lumetry
