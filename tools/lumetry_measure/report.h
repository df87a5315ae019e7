#pragma once

#include "measurement.h"

#include <string>

namespace lumetry {

/// Header and rows, one a line.
[[nodiscard]] std::string textReport(const Measurement& measurement);
/// One JSON object: path, app, header, rows (label, value, swatch), box, window
/// (points) and scale (device pixels for each point).
[[nodiscard]] std::string jsonReport(const Measurement& measurement);

/// Both boxes and their distances.
[[nodiscard]] std::string textReport(const Measurement& from, const Measurement& to);
/// One JSON object: from, to (boxes), horizontal and vertical (points), and scale.
[[nodiscard]] std::string jsonReport(const Measurement& from, const Measurement& to);

} // namespace lumetry
