#pragma once

#include "base/geometry.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// One entry of the window list; a field that the window does not have, or that is not of its
/// kind, is absent.
struct WindowInfo {
    std::optional<std::int32_t> ownerPID;     ///< kCGWindowOwnerPID
    std::optional<double> alpha;              ///< kCGWindowAlpha, 0 to 1
    std::optional<int> layer;                 ///< kCGWindowLayer, 0 for normal application windows
    std::optional<Rect> bounds;               ///< kCGWindowBounds, accessibility space
    std::optional<std::uint32_t> number = {}; ///< kCGWindowNumber
};

/// One screen, in screen space. The primary display's frame has the origin (0, 0).
struct Screen {
    Rect frame;
    Rect visibleFrame;             ///< without menu bars, docks and panels
    double backingScaleFactor = 1; ///< device pixels for each point

    friend bool operator==(const Screen&, const Screen&) = default;
};

/// Windows and screens as the desktop arranges them.
class WindowServer {
public:
    WindowServer() = default;
    WindowServer(const WindowServer&) = delete;
    WindowServer& operator=(const WindowServer&) = delete;
    virtual ~WindowServer() = default;

    /// The windows on screen, frontmost first, without the elements of the desktop itself
    /// (CGWindowListCopyWindowInfo with kCGWindowListOptionOnScreenOnly and
    /// kCGWindowListExcludeDesktopElements). Absent when the list cannot be read.
    [[nodiscard]] virtual std::optional<std::vector<WindowInfo>> onScreenWindows() = 0;

    /// The number of the window that keys go to. Absent when that is none in the list.
    [[nodiscard]] virtual std::optional<std::uint32_t> activeWindow() = 0;
    /// The title of a window in the list, UTF-8 (kCGWindowName). Absent when it has none.
    [[nodiscard]] virtual std::optional<std::string> windowName(std::uint32_t number) = 0;

    /// All screens, in the platform's order (NSScreen.screens). Empty when there are none.
    [[nodiscard]] virtual std::vector<Screen> screens() = 0;
    /// The screen in use (NSScreen.mainScreen). Absent when there are none.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() = 0;

    /// Whether other applications' windows may be captured (CGPreflightScreenCaptureAccess).
    [[nodiscard]] virtual bool preflightScreenCaptureAccess() = 0;
    /// Asks for that permission where the platform has such a prompt
    /// (CGRequestScreenCaptureAccess); whether it is granted now.
    virtual bool requestScreenCaptureAccess() = 0;
    /// Asks what can be captured, for that makes the platform list the program among those that
    /// want to (SCShareableContent). The completion runs on the main thread, later.
    virtual void getShareableContent(std::function<void()> completion) = 0;
};

} // namespace lumetry
