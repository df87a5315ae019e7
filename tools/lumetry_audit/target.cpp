#include "target.h"

#include "base/number_text.h"
#include "base/text.h"
#include "platform/accessibility.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"
#include "shared/readable_desktop.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace lumetry {
namespace {

constexpr double pauseSeconds = 0.1;

/// A window that an application shows as one of its own, not a panel, menu or tooltip.
struct Candidate {
    AuditTarget target;
    std::string title;
};

std::vector<Candidate> candidates(const Platform& platform,
                                  const std::function<bool(const Candidate&)>& matches) {
    std::vector<Candidate> found;
    for (const WindowInfo& window :
         platform.windowServer.onScreenWindows().value_or(std::vector<WindowInfo>())) {
        if (window.layer.value_or(0) != 0 || !window.ownerPID || !window.bounds || !window.number) {
            continue;
        }
        Candidate candidate = {{{*window.ownerPID, *window.bounds}, *window.number},
                               platform.windowServer.windowName(*window.number).value_or("")};
        if (matches(candidate)) {
            found.push_back(std::move(candidate));
        }
    }
    return found;
}

std::string listed(const std::vector<Candidate>& windows) {
    constexpr std::size_t most = 8;
    std::string list;
    for (std::size_t place = 0; place < std::min(windows.size(), most); ++place) {
        list += (place > 0 ? ", \"" : "\"") + onOneLine(windows[place].title) + "\" (pid " +
                std::to_string(windows[place].target.window.pid) + ")";
    }
    return windows.size() > most ? list + " and more" : list;
}

/// The one that matches. Of several of one application, the frontmost.
std::optional<AuditTarget> theOne(const Platform& platform, const std::string& wanted, bool unique,
                                  const std::function<bool(const Candidate&)>& matches,
                                  std::string& problem) {
    auto found = candidates(platform, matches);
    if (found.empty()) {
        const auto all = candidates(platform, [](const Candidate&) { return true; });
        problem = "no window on the screen " + wanted +
                  (all.empty() ? "; there is none at all." : "; there are " + listed(all) + ".");
        return std::nullopt;
    }
    if (unique && found.size() > 1) {
        problem = std::to_string(found.size()) + " windows " + wanted + ": " + listed(found) +
                  "; give more of the title, or --pid.";
        return std::nullopt;
    }
    return found.front().target;
}

} // namespace

std::optional<AuditTarget> findTarget(const Platform& platform, const TargetRequest& request,
                                      std::string& problem) {
    if (request.title) {
        return theOne(
            platform, "has \"" + *request.title + "\" in its title", true,
            [&](const Candidate& one) {
                return one.title.find(*request.title) != std::string::npos;
            },
            problem);
    }
    if (request.pid) {
        return theOne(
            platform, "belongs to process " + std::to_string(*request.pid), false,
            [&](const Candidate& one) { return one.target.window.pid == *request.pid; }, problem);
    }
    if (request.app) {
        return theOne(
            platform, "belongs to \"" + *request.app + "\"", false,
            [&](const Candidate& one) {
                return bundleID(platform.applications, one.target.window.pid) == *request.app;
            },
            problem);
    }
    if (request.point) {
        problem = offScreenProblem(platform.windowServer, {*request.point});
        return problem.empty() ? theOne(
                                     platform,
                                     "is at " + wholeNumber(request.point->x) + " " +
                                         wholeNumber(request.point->y),
                                     false,
                                     [&](const Candidate& one) {
                                         return one.target.window.bounds.contains(*request.point);
                                     },
                                     problem)
                               : std::nullopt;
    }
    const auto active = platform.windowServer.activeWindow();
    return theOne(
        platform, "is the active one", false,
        [&](const Candidate& one) { return active && one.target.number == *active; }, problem);
}

std::optional<AuditTarget> awaitWindow(NativeDesktop& desktop, StartedCommand& command,
                                       double seconds, std::string& problem) {
    const Platform& platform = desktop.platform();
    const double end = platform.runLoop.now() + seconds;
    for (;;) {
        const auto found = candidates(
            platform, [&](const Candidate& one) { return command.owns(one.target.window.pid); });
        if (!found.empty()) {
            return found.front().target;
        }
        const std::string ending = command.ending();
        const bool over = !ending.empty() && !command.running();
        if (over || platform.runLoop.now() >= end) {
            problem = ending.empty()
                          ? "the command has shown no window within " + wholeNumber(seconds) +
                                " seconds; give it longer with --wait."
                          : "the command " + ending + " and has shown no window.";
            return std::nullopt;
        }
        if (!pause(desktop, pauseSeconds)) {
            problem = "the desktop has gone while the command's window was waited for.";
            return std::nullopt;
        }
    }
}

void awaitElements(NativeDesktop& desktop, ProbeState& state, const AuditTarget& target, bool isNew,
                   double seconds, double settleSeconds) {
    constexpr double betweenReadings = 0.25;
    constexpr std::size_t mostElements = 5000;
    const Platform& platform = desktop.platform();
    const double start = platform.runLoop.now();
    std::optional<std::size_t> last;
    std::optional<double> settledSince;
    bool wasThere = !isNew;
    for (;;) {
        const auto reading = treeFingerprint(platform, state, target, mostElements);
        const double now = platform.runLoop.now();
        // What was there before anybody waited has settled long ago.
        if ((reading && wasThere) || now - start >= seconds) {
            return;
        }
        wasThere = false;
        if (!reading || reading != last) {
            settledSince = reading ? std::optional(now) : std::nullopt;
        }
        last = reading;
        if (settledSince && now - *settledSince >= settleSeconds) {
            return;
        }
        if (!pause(desktop, betweenReadings)) {
            return;
        }
    }
}

} // namespace lumetry
