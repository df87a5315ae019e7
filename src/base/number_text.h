#pragma once

#include "base/geometry.h"

#include <optional>
#include <string>

namespace lumetry {

/// In decimal with so many digits behind the point, which is a point whatever the user's language.
[[nodiscard]] std::string fixedText(double value, int decimals);

/// Rounded to the nearest integer, halves away from zero, in decimal. Any value that a double holds
/// is printed, infinities as "inf".
[[nodiscard]] std::string wholeNumber(double value);

/// The value without its fraction, at most what a 64-bit integer holds; 0 for what is not a number.
[[nodiscard]] long long integerValue(double value);

/// The aspect ratio of a size rounded to whole points: its lowest terms when neither exceeds 32
/// ("16:9"), else the exact quotient ("1.78:1"). Absent for less than a point in width or height.
[[nodiscard]] std::optional<std::string> aspectString(const Size& size);

} // namespace lumetry
