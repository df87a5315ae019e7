#pragma once

#include "plan.h"

#include "base/geometry.h"

#include "rig/private_desktop.h"
#include "rig/processes/child_process.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::accuracy {

/// Rows that a toolkit does not tell of some elements; words between blanks.
struct Untold {
    const char* whats; ///< as in the plan
    const char* rows;
};

/// In which steps a toolkit tells sizes of fonts: as they are, or in whole points of typography.
enum class FontSteps : std::uint8_t { fine, roundedPoints, cutPoints };

/// The elements of a plan on the screen.
struct Shown {
    desktop::ChildProcess program;
    std::string truth; ///< what it says of its elements: what parseTruth reads
    Point origin;      ///< of its window, in pixels
};

/// A toolkit, and the window that is built with it.
struct Kit {
    std::string_view name;
    /// Shows the elements of the plan, those that the toolkit has.
    /// @param scale pixels to a point
    Shown (*show)(const Kit&, desktop::PrivateDesktop&, const std::vector<Planned>&, double scale);
    std::vector<Untold> untold;
    FontSteps fontSteps = FontSteps::fine;
};

[[nodiscard]] const std::vector<Kit>& kits();

/// The rows that are not to be shown of such an element, since its toolkit does not tell them.
/// @param what as in the plan
[[nodiscard]] std::set<std::string> untoldRows(const Kit& kit, const std::string& what);

} // namespace lumetry::accuracy
