#pragma once

#include "plan.h"

#include "base/bitmap.h"

#include <optional>
#include <string>
#include <vector>

namespace lumetry::accuracy {

/// A text document of one page, with a paragraph for each element of the plan that has a text, and
/// a table. Each has a background of its own. Flat OpenDocument XML.
[[nodiscard]] std::string documentText(const std::vector<Planned>& plan);

/// What the document knows of its elements, at the places where their backgrounds show: what
/// parseTruth reads. Absent while one of them does not show.
/// @param screen a picture of the whole screen
/// @param scale pixels to a point
[[nodiscard]] std::optional<std::string> documentTruth(const std::vector<Planned>& plan,
                                                       const Bitmap& screen, double scale);

} // namespace lumetry::accuracy
