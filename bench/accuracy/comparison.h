#pragma once

#include "kits.h"
#include "reading.h"
#include "truth.h"

#include <optional>
#include <string>
#include <vector>

namespace lumetry::accuracy {

/// One row that an element is asked for, against what the program that shows it says.
struct Finding {
    std::string label;
    std::string element; ///< id
    std::string truth;   ///< as the row would say it; empty where the row is not to be there
    std::optional<std::string> said;
    bool right = false;
    /// Said less true, in points, of what is estimated or told in larger steps than it is asked
    /// for: such rows count apart.
    std::optional<double> error = std::nullopt;
    bool apart = false;
};

/// The rows that its kind of element has, each compared by what it means: the text's frame counts
/// for texts, the distance to the frame of what is inside for paddings. Where an edge lies between
/// two pixels, toolkits differ in which of them they tell: either will do. "element" is whether the
/// right element was found. A row that the toolkit does not tell is right where it is not shown.
/// @param scale pixels to a point
[[nodiscard]] std::vector<Finding> compare(const Truth& truth, const Reading& reading,
                                           const Kit& kit, double scale);

} // namespace lumetry::accuracy
