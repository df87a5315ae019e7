#pragma once

#include "audit/component.h"
#include "audit/finding.h"
#include "audit/window_audit.h"

#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace lumetry {

/// From where on the rules find fault. Lengths in points.
struct Thresholds {
    bool enhanced = false;          ///< WCAG's level AAA for contrast, else AA
    std::optional<double> contrast; ///< of usual text; when absent, what the level says
    std::optional<double> largeContrast;
    double estimateMargin = 0.3; ///< by which an estimated ratio may miss the threshold
    double targetSize = 24;
    double textSize = 9;
    double colorDifference = 2.3; ///< CIEDE2000, of colours that are nearly equal
    double grid = 4;              ///< that gaps are multiples of
    std::size_t fontSizes = 8;    ///< as many as there may be
    std::size_t families = 3;
    std::size_t radii = 4;
    std::set<Rule> off; ///< what is not looked for
};

/// @{ What each rule finds, in the components' order.
[[nodiscard]] std::vector<Finding> contrastFindings(std::span<const Component> components,
                                                    const Thresholds& thresholds);
[[nodiscard]] std::vector<Finding> targetSizeFindings(std::span<const Component> components,
                                                      const Thresholds& thresholds);
[[nodiscard]] std::vector<Finding> nameFindings(std::span<const Component> components);
[[nodiscard]] std::vector<Finding> textSizeFindings(std::span<const Component> components,
                                                    const Thresholds& thresholds);
[[nodiscard]] std::vector<Finding> consistencyFindings(const WindowAudit& audit,
                                                       const Thresholds& thresholds);
/// @}

/// What all rules find that are on: by rule, errors first, then from the top of the window down.
[[nodiscard]] std::vector<Finding> findingsOf(const WindowAudit& audit,
                                              const Thresholds& thresholds);

} // namespace lumetry
