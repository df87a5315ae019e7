#pragma once

#include "base/geometry.h"
#include "base/token.h"
#include "platform/native/native_desktop.h"
#include "probe/probe_state.h"

#include <memory>
#include <string>
#include <vector>

namespace lumetry {

/// The desktop, once it is known that other applications may be read.
struct ReadableDesktop {
    std::unique_ptr<NativeDesktop> desktop; ///< none when they may not
    Token lockWatch;
};

/// @param problem what is in the way, and what to do, in one sentence; empty when nothing is
[[nodiscard]] ReadableDesktop openReadableDesktop(int& argc, char** argv, std::string& problem);

/// Whether the screen has been locked, now that what has happened meanwhile is heard.
[[nodiscard]] std::string lockProblem(NativeDesktop& desktop);

/// The first of the points that lies on no screen, in words; empty when all do.
/// @param points accessibility space
[[nodiscard]] std::string offScreenProblem(WindowServer& windowServer,
                                           const std::vector<Point>& points);

/// Runs the loop for that long, or until the process is asked to end or the desktop goes away.
/// @return whether there is reason to go on
bool pause(NativeDesktop& desktop, double seconds);

/// Says that the process was asked to end before it was done.
[[nodiscard]] std::string endedProblem(int signal);
/// What a program's exit status is then, as shells count.
[[nodiscard]] int statusAfter(int signal);

/// Waits for a page's tree where its application knows nothing finer than its window yet. Those
/// that bundle Chromium build it once they are asked; Gecko, which nothing tells beforehand, only
/// gathers where things are. Ends with the reason to go on.
/// @param at accessibility space
/// @param longestSeconds to wait for a tree to be built, and for places to be gathered
void awaitTree(NativeDesktop& desktop, ProbeState& state, Point at, double longestBuildSeconds,
               double longestGatheringSeconds);

} // namespace lumetry
