#pragma once

#include "base/bitmap.h"
#include "base/geometry.h"

#include <cstdint>
#include <optional>

namespace lumetry {

class ScreenCapture;

/// The side of the square around the pointer in which a box is looked for, in points.
inline constexpr double pixelBoxSquareSide = 300;

/// The visual box around a point: the extent of the evenly coloured region that contains it, up to
/// borders, separators, other colours and the edge of the screens, across text and icons. Absent
/// when the screen cannot be read, when the region goes on beyond 150 points, or when the box is
/// smaller than 8 points.
/// @param point accessibility space, as is the result
[[nodiscard]] std::optional<Rect> pixelBox(ScreenCapture& capture, std::uint32_t windowNumber,
                                           Point point);

/// The same in a picture of the square of 300 × 300 points centred on the point.
[[nodiscard]] std::optional<Rect> pixelBoxIn(const Bitmap& square, Point point);

} // namespace lumetry
