#pragma once

#include "measurement.h"

#include <filesystem>
#include <optional>
#include <string>

namespace lumetry {

/// The box around a point of a picture and its surface, found in the pixels alone. None when the
/// file is no picture; an outcome without a box when there is no box around the point.
/// @param at in points from the picture's top-left corner
/// @param scale pixels for each point; when absent, the density that the picture declares by 96
/// dots per inch, or 1 where it declares none or less
/// @param problem then one sentence that says what is wrong
[[nodiscard]] std::optional<Measurement> measureImageFile(const std::filesystem::path& file,
                                                          Point at, std::optional<double> scale,
                                                          std::string& problem);

} // namespace lumetry
