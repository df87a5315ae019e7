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
#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>

namespace lumetry {
namespace {

/// What opening a desktop sets for this process alone is back as it was at the end: a command that
/// is started for an audit would not show its windows without a display.
class OwnEnvironment {
public:
    OwnEnvironment() {
        for (std::size_t place = 0; place < names.size(); ++place) {
            if (const char* const text = std::getenv(names.at(place))) {
                before_.at(place) = text;
            }
        }
    }
    OwnEnvironment(const OwnEnvironment&) = delete;
    OwnEnvironment& operator=(const OwnEnvironment&) = delete;
    ~OwnEnvironment() {
        for (std::size_t place = 0; place < names.size(); ++place) {
            if (before_.at(place)) {
                setenv(names.at(place), before_.at(place)->c_str(), 1);
            } else {
                unsetenv(names.at(place));
            }
        }
    }

private:
    static constexpr std::array names = {"QT_QPA_PLATFORM", "QT_XCB_GL_INTEGRATION", "QT_FONT_DPI"};
    std::array<std::optional<std::string>, names.size()> before_;
};

std::unique_ptr<NativeDesktop> openDesktop(int& argc, char** argv, std::string& problem) {
    const OwnEnvironment environment;
    return NativeDesktop::open(argc, argv, problem);
}

std::string lockedProblem(const Platform& platform) {
    return platform.screenLock.isLocked()
               ? "The screen is locked or its screen saver is on: unlock it, and measure again."
               : "";
}

} // namespace

ReadableDesktop openReadableDesktop(int& argc, char** argv, std::string& problem) {
    ReadableDesktop opened = {openDesktop(argc, argv, problem), {}};
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
