#include "shared/readable_desktop.h"

#include "base/number_text.h"
#include "platform/accessibility.h"
#include "platform/run_loop.h"
#include "platform/screen_lock.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"
#include "probe/hit_test.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace lumetry {
namespace {

std::string lockedProblem(const Platform& platform) {
    return platform.screenLock.isLocked()
               ? "The screen is locked or its screen saver is on: unlock it, and measure again."
               : "";
}

} // namespace

ReadableDesktop openReadableDesktop(int& argc, char** argv, std::string& problem) {
    ReadableDesktop opened = {NativeDesktop::open(argc, argv, problem), {}};
    if (!opened.desktop) {
        return opened;
    }
    const Platform& platform = opened.desktop->platform();
    if (!platform.accessibility.isProcessTrusted()) {
        problem = opened.desktop->trustProblem();
        return {};
    }
    opened.lockWatch = platform.screenLock.onChange([] {});
    problem = lockedProblem(platform);
    return problem.empty() ? std::move(opened) : ReadableDesktop();
}

std::string lockProblem(NativeDesktop& desktop) {
    desktop.platform().runLoop.async([&desktop] { desktop.quit(EXIT_SUCCESS); });
    (void)desktop.run();
    return lockedProblem(desktop.platform());
}

std::string offScreenProblem(WindowServer& windowServer, const std::vector<Point>& points) {
    const double height = primaryDisplayHeight(windowServer);
    const auto screens = windowServer.screens();
    for (const Point& point : points) {
        const bool onScreen = std::ranges::any_of(screens, [&](const Screen& screen) {
            return flipped(screen.frame, height).contains(point);
        });
        if (!onScreen) {
            return "the point " + wholeNumber(point.x) + " " + wholeNumber(point.y) +
                   " is on no screen; give X and Y in points from the top-left corner of the "
                   "primary screen.";
        }
    }
    return "";
}

bool pause(NativeDesktop& desktop, double seconds) {
    const auto passed = std::make_shared<bool>(false);
    desktop.platform().runLoop.after(seconds, [&desktop, passed] {
        *passed = true;
        desktop.quit(EXIT_SUCCESS);
    });
    (void)desktop.run();
    return *passed && !desktop.terminationSignal();
}

std::string endedProblem(int signal) {
    return "ended by signal " + std::to_string(signal) + " before it was done.";
}

int statusAfter(int signal) {
    constexpr int beyondStatuses = 128;
    return beyondStatuses + signal;
}

void awaitTree(NativeDesktop& desktop, ProbeState& state, Point at, double longestBuildSeconds,
               double longestGatheringSeconds) {
    constexpr double pauseSeconds = 0.1;
    const Platform& platform = desktop.platform();
    const double start = platform.runLoop.now();
    while (const auto window = topWindowInfo(platform, state, at)) {
        const bool chromium = isElectronApp(platform, state, window->pid);
        const auto element = axElementAt(platform, state, at, window);
        const bool onlyTheWindow =
            element ? axString(*element, "AXRole").value_or("AXWindow") == "AXWindow" : chromium;
        const double waited = platform.runLoop.now() - start;
        if (!onlyTheWindow ||
            waited >= (chromium ? longestBuildSeconds : longestGatheringSeconds) ||
            !pause(desktop, pauseSeconds)) {
            return;
        }
    }
}

} // namespace lumetry
