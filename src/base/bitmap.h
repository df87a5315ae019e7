#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumetry {

/// Pixels as 0xAARRGGBB words in the machine's byte order, alpha premultiplied, row after row from
/// the top, without gaps between rows.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    Bitmap() = default;
    /// Transparent black. The size must not be negative.
    Bitmap(int columns, int rows)
        : width(columns), height(rows),
          pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

} // namespace lumetry
