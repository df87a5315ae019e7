#pragma once

#include "audit/finding.h"

#include <array>
#include <string>

namespace lumetry {

/// What a finding is known again by, whatever its values: rule, kind, and path below the window,
/// whose title often has a document's name or a number in it.
using FindingKey = std::array<std::string, 3>;

[[nodiscard]] FindingKey keyOf(const Finding& finding);

} // namespace lumetry
