#pragma once

#include "truth.h"

#include <functional>
#include <string>
#include <vector>

namespace lumetry::accuracy {

/// What a row has to say of an element.
struct Expectation {
    std::string label;
    std::string text;                              ///< as the row would say it
    std::function<bool(const std::string&)> holds; ///< of the row's value
};

/// The rows of that kind of element for which there is a truth, radii aside.
/// @param scale pixels to a point
[[nodiscard]] std::vector<Expectation> expectationsOf(const Truth& truth, double scale);

/// Whether the element has a surface whose corners are measured.
[[nodiscard]] bool hasCorners(const Truth& truth);

} // namespace lumetry::accuracy
