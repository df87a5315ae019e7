#pragma once

#include "base/bitmap.h"
#include "base/int_geometry.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace lumetry::x11 {

/// How a window's pixels are laid out.
struct PixelFormat {
    xcb_visualid_t visual = 0;
    std::uint8_t depth = 0;
    bool hasAlpha = false;
    std::uint32_t redMask = 0;
    std::uint32_t greenMask = 0;
    std::uint32_t blueMask = 0;
    unsigned bitsPerPixel = 0;
    unsigned scanlinePad = 0; ///< rows of images end at a multiple of that many bits
    bool mostSignificantByteFirst = false;
};

/// Translucent pixels; absent where the server has none.
[[nodiscard]] std::optional<PixelFormat> translucentFormat(const xcb_setup_t& setup,
                                                           const xcb_screen_t& screen);
/// The root window's; absent where its pixels are not made of red, green and blue.
[[nodiscard]] std::optional<PixelFormat> rootFormat(const xcb_setup_t& setup,
                                                    const xcb_screen_t& screen);

/// @param color premultiplied 0xAARRGGBB
[[nodiscard]] std::uint32_t pixelOf(const PixelFormat& format, std::uint32_t color);

/// Whether a window with hard edges is there at a pixel of that colour.
[[nodiscard]] bool isOpaque(std::uint32_t color);

[[nodiscard]] std::size_t bytesPerRow(const PixelFormat& format, int width);

/// Rows of the bitmap as the server takes them.
[[nodiscard]] std::vector<std::uint8_t> packed(const PixelFormat& format, const Bitmap& bitmap,
                                               int firstRow, int rows);

/// The opaque pixels of a bitmap as rectangles that do not overlap.
/// @param origin of the bitmap's top-left pixel; y grows downwards
[[nodiscard]] std::vector<IntRect> opaqueParts(const Bitmap& bitmap, IntPoint origin);

} // namespace lumetry::x11
