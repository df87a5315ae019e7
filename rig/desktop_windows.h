#pragma once

#include "base/geometry.h"
#include "rig/x_connection.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::desktop {

/// A window of an application (not the frame that a window manager puts around it).
struct DesktopWindow {
    xcb_window_t id = XCB_NONE;
    std::string title;
    /// The two halves of WM_CLASS.
    std::string instanceName;
    std::string className;
    bool overrideRedirect = false;
    /// Where its contents are, in pixels of the root window, y downwards.
    Rect bounds;

    friend bool operator==(const DesktopWindow&, const DesktopWindow&) = default;
};

/// All mapped windows that belong to an application: those managed by the window manager, and the
/// children of the root that have a class or override the redirection.
[[nodiscard]] std::vector<DesktopWindow> desktopWindows(const XConnection& server);

using WindowPredicate = std::function<bool(const DesktopWindow&)>;
[[nodiscard]] WindowPredicate hasTitle(std::string title);
[[nodiscard]] WindowPredicate hasClass(std::string className);

/// Waits for such a window. Throws std::runtime_error when none appears.
DesktopWindow waitForWindow(const XConnection& server, const WindowPredicate& predicate);

/// Gives the window's contents that place and size, which the application must allow, and returns
/// the window once it is there. Throws std::runtime_error when it does not get there.
DesktopWindow placeWindow(const XConnection& server, xcb_window_t window, const Rect& bounds);

} // namespace lumetry::desktop
