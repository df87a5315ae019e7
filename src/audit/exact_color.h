#pragma once

#include "base/color.h"
#include "base/geometry.h"

#include <optional>

namespace lumetry {

class PictureCapture;

/// The colour that most pixels of an element have among those that an estimate was made from.
/// Absent where no single one prevails, as in a gradient.
/// @param frame of the element, in accessibility space
/// @param estimate its dominant colour, with its shades
[[nodiscard]] std::optional<Color> exactColor(PictureCapture& picture, const Rect& frame,
                                              const Color& estimate);

} // namespace lumetry
