#pragma once

#include "plan.h"

#include "base/geometry.h"

#include "support/processes/child_process.h"
#include "support/real_desktop/private_desktop.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::accuracy {

/// A row that a toolkit does not tell.
struct Untold {
    std::string_view what; ///< as in the plan; empty for all that have the row
    std::string_view row;
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
    /// Rows that the toolkit does not tell, which therefore are not to be shown.
    std::vector<Untold> untold;
    FontSteps fontSteps = FontSteps::fine;
};

[[nodiscard]] const std::vector<Kit>& kits();

[[nodiscard]] bool isUntold(const Kit& kit, std::string_view what, std::string_view row);

} // namespace lumetry::accuracy
