#include "comparison.h"

#include "base/number_text.h"
#include "expectation.h"

#include <cstdlib>

namespace lumetry::accuracy {
namespace {

constexpr double smallestRadius = 2; ///< that is shown

/// Radii are estimates: none is right or wrong, but one of a square corner is.
Finding cornersOf(const Truth& truth, const Reading& reading) {
    constexpr std::string_view estimated = "≈ ";
    Finding finding = {
        "radius", truth.id, wholeNumber(truth.radius) + "px", reading.value("radius"), true, 0};
    if (truth.radius < smallestRadius) {
        finding.label = "no radius";
        finding.right = !finding.said;
        return finding;
    }
    if (finding.said && finding.said->starts_with(estimated)) {
        finding.radiusError = std::atof(finding.said->c_str() + estimated.size()) - truth.radius;
    }
    return finding;
}

} // namespace

std::vector<Finding> compare(const Truth& truth, const Reading& reading) {
    std::vector<Finding> findings = {
        {"element", truth.id, truth.role, reading.header,
         reading.header == truth.role || reading.header.starts_with(truth.role + " "), 0}};
    for (const Expectation& row : expectationsOf(truth)) {
        const auto said = reading.value(row.label);
        findings.push_back({row.label, truth.id, row.text, said, said && row.holds(*said), 0});
    }
    if (hasCorners(truth)) {
        findings.push_back(cornersOf(truth, reading));
    }
    return findings;
}

} // namespace lumetry::accuracy
