#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lumetry::auditing {

/// Red, green and blue in 24 bits.
using Rgb = std::uint32_t;

/// WCAG's contrast ratio, worked out from its definition and from nothing of the product's.
[[nodiscard]] double contrastOf(Rgb text, Rgb background);
/// Such as "#1d4ed8".
[[nodiscard]] std::string hexOf(Rgb color);

/// Of a ramp of colours the two neighbours on both sides of a ratio.
struct Border {
    Rgb below = 0; ///< just misses the ratio
    Rgb above = 0; ///< just has it
};
/// Between the background itself and black or white, towards whichever is farther, in a tint.
[[nodiscard]] Border borderOf(double ratio, Rgb background, Rgb tint);

} // namespace lumetry::auditing
