#pragma once

#include "base/bitmap.h"
#include "base/geometry.h"

#include <vector>

namespace lumetry::x11 {

/// The opaque pixels of a bitmap as rectangles that do not overlap.
/// @param origin of the bitmap's top-left pixel; y grows downwards
[[nodiscard]] std::vector<Rect> opaqueParts(const Bitmap& bitmap, Point origin);

} // namespace lumetry::x11
