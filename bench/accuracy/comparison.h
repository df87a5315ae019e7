#pragma once

#include "reading.h"
#include "truth.h"

#include <optional>
#include <string>
#include <vector>

namespace lumetry::accuracy {

/// One row that an element is asked for, against what the browser says.
struct Finding {
    std::string label;
    std::string element; ///< id
    std::string truth;   ///< as the row would say it
    std::optional<std::string> said;
    bool right = false;
    double radiusError = 0; ///< said less true, in pixels; 0 for other rows
};

/// The rows that its kind of element has, each compared by what it means: the text's frame counts
/// for texts, the distance to the frame of what is inside for paddings. Where an edge lies between
/// two pixels, browsers differ in which of them they tell: either will do. "element" is whether the
/// right element was found.
[[nodiscard]] std::vector<Finding> compare(const Truth& truth, const Reading& reading);

} // namespace lumetry::accuracy
