#pragma once

#include "base/geometry.h"
#include "rig/private_desktop.h"

#include <string>
#include <vector>

namespace lumetry::latency {

/// One sample that Lumetry's session took.
struct Sample {
    double update = 0;  ///< microseconds
    double repaint = 0; ///< microseconds, after the update
    double requests = 0;
    double waits = 0;
    double windowSystem = 0; ///< round trips
    /// @{ Microseconds of the update.
    double accessibility = 0;
    double capture = 0;
    double windows = 0;
    /// @}
    bool anew = false;  ///< whether something else is shown than by the sample before
    std::string bucket; ///< the element's class

    /// The rest of the update: what Lumetry makes of the answers.
    [[nodiscard]] double analysis() const { return update - accessibility - capture - windows; }
};

/// The points as the probes read them.
[[nodiscard]] std::string textOf(const std::vector<Point>& points);
/// Points of a grid over an area.
[[nodiscard]] std::vector<Point> gridOver(const Rect& area);

/// What a session makes of the points. Two samples for each.
[[nodiscard]] std::vector<Sample> probeSession(const desktop::PrivateDesktop& desktop,
                                               const std::vector<Point>& points);
/// Of such samples, the first at each point.
[[nodiscard]] std::vector<Sample> firstSamples(const std::vector<Sample>& samples);
/// Of such samples, the second at each point, whose readout is there already.
[[nodiscard]] std::vector<Sample> secondSamples(const std::vector<Sample>& samples);

[[nodiscard]] std::vector<double> valuesOf(const std::vector<Sample>& samples,
                                           double Sample::*field);

/// What the calls cost that a hover needs at the least, made with libatspi alone.
struct BareCalls {
    std::vector<double> microseconds;
    std::vector<double> calls;
};

/// Adds to what was measured before.
void probeBare(const desktop::PrivateDesktop& desktop, const std::string& application,
               const std::vector<Point>& points, BareCalls& calls);

} // namespace lumetry::latency
