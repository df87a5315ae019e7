#include "measurement.h"

#include "platform/accessibility.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/hit_test.h"
#include "shared/readable_desktop.h"

namespace lumetry {
namespace {

constexpr std::uint32_t noWindow = 0;

Measurement measureOnce(NativeDesktop& desktop, ProbeState& state, Point at) {
    const Platform& platform = desktop.platform();
    const Token kept = platform.accessibility.keepReplies();
    PointerSample sample;
    sample.time = platform.runLoop.now();
    sample.at = at;
    sample.window = topWindowInfo(platform, state, at);
    Inspector inspector(platform, state);
    Measurement measurement;
    const auto screen = platform.windowServer.mainScreen();
    measurement.scale = screen ? screen->backingScaleFactor : 1;
    measurement.outcome = inspector.look(sample, noWindow);
    inspector.addLiveColor(measurement.outcome, sample, noWindow);
    if (sample.window) {
        measurement.app = bundleID(platform.applications, sample.window->pid);
        measurement.window = sample.window->bounds;
    }
    return measurement;
}

} // namespace

Measurement measurePoint(NativeDesktop& desktop, ProbeState& state, Point at) {
    constexpr double longestBuildSeconds = 2.5;
    constexpr double longestGatheringSeconds = 0.3;
    awaitTree(desktop, state, at, longestBuildSeconds, longestGatheringSeconds);
    return measureOnce(desktop, state, at);
}

Distances distancesBetween(const Rect& a, const Rect& b) {
    const auto length = [](const std::optional<Span>& span) {
        return span ? std::optional(span->length()) : std::nullopt;
    };
    return {length(gapBetween(horizontalSpan(a), horizontalSpan(b))),
            length(gapBetween(verticalSpan(a), verticalSpan(b)))};
}

} // namespace lumetry
