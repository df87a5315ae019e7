#pragma once

#include "audit/finding.h"

#include <array>
#include <string>

namespace lumetry {

/// What a finding is known again by, whatever its values: rule, kind, and path below the window,
/// without its title and a page's, which often have a document's name or a number in them.
using FindingKey = std::array<std::string, 3>;

[[nodiscard]] FindingKey keyOf(const Finding& finding);

} // namespace lumetry
