#pragma once

#include "base/color.h"

#include <string>

namespace lumetry {

/// The colour as "#RRGGBB", upper case, each component rounded to the nearest of 0 to 255. Alpha is
/// left out.
[[nodiscard]] std::string hexString(const Color& color);

/// The relative luminance of an sRGB colour, from 0 to 1 (WCAG 2.0, "relative luminance", with its
/// threshold of 0.03928). Alpha is ignored.
[[nodiscard]] double lum(const Color& color);

/// The contrast ratio of two colours, from 1 to 21, whichever comes first (WCAG 2.0, "contrast
/// ratio").
[[nodiscard]] double wcagContrast(const Color& a, const Color& b);

} // namespace lumetry
