#include "probe/hit_test.h"

#include "platform/accessibility.h"
#include "platform/applications.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"

namespace lumetry {
namespace {

constexpr double leastVisibleAlpha = 0.01;
constexpr int normalLayer = 0;
constexpr int lowestPanelLayer = 1;
constexpr int highestPanelLayer = 19;
constexpr float hitTestTimeoutSeconds = 0.35F;
constexpr double coarseRatio = 0.9;

bool hasPlaceInTaskBar(Applications& applications, pid_t pid) {
    const auto application = applications.runningApplication(pid);
    return application && application->activationPolicy == ActivationPolicy::regular;
}

std::optional<AXUIElement> hitTest(const AXUIElement& root, Point at) {
    return root.copyElementAtPosition(static_cast<float>(at.x), static_cast<float>(at.y));
}

} // namespace

std::optional<WindowHit> topWindowInfo(const Platform& platform, const ProbeState& state,
                                       Point at) {
    const auto windows = platform.windowServer.onScreenWindows();
    if (!windows) {
        return std::nullopt;
    }
    std::optional<WindowHit> panel;
    for (const WindowInfo& window : *windows) {
        if (!window.ownerPID || *window.ownerPID == state.lumetryPID) {
            continue;
        }
        if (window.alpha && *window.alpha <= leastVisibleAlpha) {
            continue;
        }
        if (!window.layer || !window.bounds || !window.bounds->contains(at)) {
            continue;
        }
        if (*window.layer == normalLayer) {
            return WindowHit{*window.ownerPID, *window.bounds};
        }
        if (!panel && *window.layer >= lowestPanelLayer && *window.layer <= highestPanelLayer &&
            hasPlaceInTaskBar(platform.applications, *window.ownerPID)) {
            panel = WindowHit{*window.ownerPID, *window.bounds};
        }
    }
    return panel;
}

std::optional<AXUIElement> axElementAt(const Platform& platform, ProbeState& state, Point at,
                                       const std::optional<WindowHit>& window) {
    if (!window) {
        return hitTest(platform.accessibility.createSystemWide(), at);
    }
    const AXUIElement application = platform.accessibility.createApplication(window->pid);
    application.setMessagingTimeout(hitTestTimeoutSeconds);
    const bool electron = isElectronApp(platform, state, window->pid);
    auto element = hitTest(application, at);
    if (electron) {
        const auto frame = element ? axFrame(*element) : std::nullopt;
        if (!element || (frame && nearlyCovers(*frame, window->bounds))) {
            wakeElectron(platform, state, application, window->pid);
        }
    }
    return element;
}

bool nearlyCovers(const Rect& frame, const Rect& bounds) {
    return frame.width >= coarseRatio * bounds.width && frame.height >= coarseRatio * bounds.height;
}

} // namespace lumetry
