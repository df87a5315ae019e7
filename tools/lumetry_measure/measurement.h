#pragma once

#include "base/geometry.h"
#include "platform/native/native_desktop.h"
#include "probe/probe_state.h"
#include "session/inspector.h"

#include <optional>
#include <string>

namespace lumetry {

/// What lies at one point of the screen.
struct Measurement {
    HoverOutcome outcome;
    std::string app = "(none)"; ///< bundle identifier, as in the detection log
    std::optional<Rect> window; ///< accessibility space
    double scale = 1;           ///< device pixels for each point
};

/// Measures a point once. An application built on Chromium whose tree is still asleep is woken and
/// given time to build it.
/// @param at accessibility space
[[nodiscard]] Measurement measurePoint(NativeDesktop& desktop, ProbeState& state, Point at);

/// The distances between two boxes; absent on an axis on which they overlap.
struct Distances {
    std::optional<double> horizontal; ///< points
    std::optional<double> vertical;   ///< points
};

[[nodiscard]] Distances distancesBetween(const Rect& a, const Rect& b);

} // namespace lumetry
