#pragma once

#include "base/color.h"

namespace lumetry {

/// How different two colours look (CIEDE2000, with the reference weights): 0 for equal ones, and
/// about 2.3 where most people begin to tell them apart. Alpha is ignored.
[[nodiscard]] double colorDifference(const Color& a, const Color& b);

/// A colour in CIE L*a*b*, D65.
struct Lab {
    double lightness = 0; ///< from 0 to 100
    double a = 0;
    double b = 0;
};

[[nodiscard]] Lab labOf(const Color& color);
[[nodiscard]] double colorDifference(const Lab& first, const Lab& second);

} // namespace lumetry
