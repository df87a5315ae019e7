#pragma once

#include "plan.h"

#include <string>
#include <vector>

namespace lumetry::accuracy {

/// A page of those elements, each at its place. Once it is laid out it posts to its own server,
/// under truthPath, where each element is and how it is styled, as the browser itself says: what
/// parseTruth reads.
[[nodiscard]] std::string pageHtml(const std::vector<Planned>& plan);

inline constexpr const char* truthPath = "/truth";

/// Asks each element for its place and style; the end of the page.
[[nodiscard]] std::string pageScript();

} // namespace lumetry::accuracy
