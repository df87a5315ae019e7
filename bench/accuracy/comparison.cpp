#include "comparison.h"

#include "base/number_text.h"
#include "expectation.h"

#include <cmath>
#include <cstdlib>
#include <utility>

namespace lumetry::accuracy {
namespace {

constexpr std::string_view estimated = "≈ ";

bool isEstimate(const std::optional<std::string>& said) {
    return said && said->starts_with(estimated);
}

/// Radii are estimates: none is right or wrong, but one of a square corner is.
Finding cornersOf(const Truth& truth, const Reading& reading) {
    constexpr double smallestShown = 2;
    const double radius = truth.radius.value_or(0);
    Finding finding = {"radius", truth.id, wholeNumber(radius) + "px", reading.value("radius")};
    finding.apart = true;
    if (radius < smallestShown) {
        finding.label = "no radius";
        finding.right = !finding.said;
    } else if (isEstimate(finding.said)) {
        finding.error = std::atof(finding.said->c_str() + estimated.size()) - radius;
    }
    return finding;
}

/// Whether the size lies between two that a toolkit can tell.
bool isBetweenSteps(double fontSize, FontSteps steps) {
    constexpr double pointsPerTypographic = 96.0 / 72;
    const double typographic = fontSize / pointsPerTypographic;
    const double told = steps == FontSteps::cutPoints       ? std::floor(typographic)
                        : steps == FontSteps::roundedPoints ? std::round(typographic)
                                                            : typographic;
    return std::round(told * pointsPerTypographic) != std::round(fontSize);
}

/// A colour that the toolkit does not tell is the one estimated from the pixels, and so is the
/// contrast with it.
bool restsOnEstimate(const std::string& label, const Reading& reading) {
    return (label == "color" || label == "text" || label == "contrast") &&
           (isEstimate(reading.value("color")) || isEstimate(reading.value("text")));
}

void setApart(Finding& finding, const Truth& truth, const Reading& reading, const Kit& kit) {
    if (restsOnEstimate(finding.label, reading)) {
        finding.label += " of estimated ink";
        finding.apart = true;
    } else if (finding.label == "font" && isBetweenSteps(*truth.fontSize, kit.fontSteps)) {
        finding.label = "font between steps";
        finding.apart = true;
    }
}

} // namespace

std::vector<Finding> compare(const Truth& truth, const Reading& reading, const Kit& kit,
                             double scale) {
    std::vector<Finding> findings = {
        {"element", truth.id, truth.role, reading.header,
         reading.header == truth.role || reading.header.starts_with(truth.role + " ")}};
    const auto untold = untoldRows(kit, truth.what);
    for (const Expectation& row : expectationsOf(truth, scale)) {
        // A colour that is not told is estimated, and shown.
        if (!untold.contains(row.label) || restsOnEstimate(row.label, reading)) {
            const auto said = reading.value(row.label);
            Finding finding = {row.label, truth.id, row.text, said, said && row.holds(*said)};
            setApart(finding, truth, reading, kit);
            findings.push_back(std::move(finding));
        }
    }
    for (const std::string& label : untold) {
        if (!restsOnEstimate(label, reading)) {
            const auto said = reading.value(label);
            findings.push_back({"no " + label, truth.id, "", said, !said});
        }
    }
    if (hasCorners(truth)) {
        findings.push_back(cornersOf(truth, reading));
    }
    return findings;
}

} // namespace lumetry::accuracy
