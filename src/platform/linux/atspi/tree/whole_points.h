#pragma once

#include "base/geometry.h"

#include <cstdint>

namespace lumetry::atspi {

/// How an application makes whole pixels of a place that has fractions.
enum class Rounding : std::uint8_t {
    none,    ///< it does not, or how is not known
    outward, ///< to the pixels that the place touches
    nearest, ///< each edge to the pixel's edge that is nearest
};

/// A place before it was rounded: where points are not whole pixels, the one on whole points that
/// would be rounded to this. Along an axis on which there is none it stays as it is.
/// @param reported pixels of the root window
/// @param origin of the window that it is in, likewise
/// @param scale pixels for each point
[[nodiscard]] Rect onWholePoints(const Rect& reported, Rounding rounding, Point origin,
                                 double scale);

} // namespace lumetry::atspi
