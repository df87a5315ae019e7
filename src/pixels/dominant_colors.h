#pragma once

#include "base/bitmap.h"
#include "pixels/color_sample.h"

#include <cstddef>
#include <optional>

namespace lumetry {

/// The average of many pixels, rounded down.
struct AverageColor {
    PixelColor color;
    std::size_t pixels = 0; ///< how many it was taken of, at least one
};

/// The colours that a picture mostly consists of.
struct DominantColors {
    AverageColor fill;               ///< the most frequent one, with its shades
    std::optional<AverageColor> ink; ///< the most frequent one that differs clearly from it
    std::size_t pixels = 0;          ///< of the picture that exist
};

/// The dominant colours of what exists of a picture. Absent when the fill covers less than the
/// share of it (from 0 to 1), and when nothing exists.
[[nodiscard]] std::optional<DominantColors> dominantColors(const Bitmap& picture,
                                                           double leastFillShare);

} // namespace lumetry
