#include "measurement.h"

#include "platform/accessibility.h"
#include "platform/run_loop.h"
#include "probe/ax_access.h"
#include "probe/electron.h"

#include <cstdlib>

namespace lumetry {
namespace {

constexpr std::uint32_t noWindow = 0;

Measurement measureOnce(NativeDesktop& desktop, ProbeState& state, Point at) {
    const Platform& platform = desktop.platform();
    const Token answers = platform.accessibility.keepAnswers();
    PointerSample sample;
    sample.time = platform.runLoop.now();
    sample.at = at;
    sample.window = topWindowInfo(platform, state, at);
    Inspector inspector(platform, state);
    Measurement measurement;
    measurement.outcome = inspector.look(sample, noWindow);
    inspector.addLiveColor(measurement.outcome, sample, noWindow);
    if (sample.window) {
        measurement.app = bundleID(platform.applications, sample.window->pid);
        measurement.window = sample.window->bounds;
    }
    return measurement;
}

/// Whether a page's tree is still on its way: the application bundles Chromium, but knows nothing
/// finer than its window there.
bool isAsleep(NativeDesktop& desktop, ProbeState& state, Point at) {
    const auto window = topWindowInfo(desktop.platform(), state, at);
    if (!window || !isElectronApp(desktop.platform(), state, window->pid)) {
        return false;
    }
    const auto element = axElementAt(desktop.platform(), state, at, window);
    return !element || axString(*element, "AXRole").value_or("AXWindow") == "AXWindow";
}

} // namespace

Measurement measurePoint(NativeDesktop& desktop, ProbeState& state, Point at) {
    constexpr double longestWaitSeconds = 2.5;
    constexpr double pauseSeconds = 0.1;
    const double deadline = desktop.platform().runLoop.now() + longestWaitSeconds;
    while (isAsleep(desktop, state, at) && desktop.platform().runLoop.now() < deadline) {
        desktop.platform().runLoop.after(pauseSeconds, [&] { desktop.quit(EXIT_SUCCESS); });
        (void)desktop.run();
    }
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
