#pragma once

#include "base/geometry.h"
#include "platform/linux/windows/root_space.h"

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// A window on the screen as the accessibility side needs it.
struct DesktopWindow {
    std::uint32_t id = 0;     ///< of the application's own window, the same for as long as it lives
    std::optional<pid_t> pid; ///< of its owner; absent where that cannot be told
    Rect bounds;              ///< root space, with its decorations, without shadow
    bool popup = false;       ///< a menu, drop-down, tooltip or the like
    Rect client = {};         ///< the same without its decorations
    /// What its application draws, shadow included; only where applications count from their
    /// windows, as nothing tells them where those are.
    std::optional<Rect> surface = {};
    /// Of a popup, in that case: what the application draws of the window below that it belongs to.
    std::optional<Rect> openerSurface = {};
    double pixelsPerUnit = 1; ///< device pixels for each unit of the places above
};

/// What a process's windows say of it.
struct ProcessWindows {
    bool any = false;       ///< it has windows that a window manager looks after
    bool inTaskBar = false; ///< at least one of them has a place in the task bar
    std::vector<std::string>
        classes; ///< both strings of each one's WM_CLASS, and its application id
};

/// Windows as the Linux desktop has them, for the parts of this backend that are not X11's own.
class DesktopWindows {
public:
    DesktopWindows() = default;
    DesktopWindows(const DesktopWindows&) = delete;
    DesktopWindows& operator=(const DesktopWindows&) = delete;
    virtual ~DesktopWindows() = default;

    /// Where accessibility space lies on the root window, whose coordinates AT-SPI speaks.
    [[nodiscard]] virtual RootSpace rootSpace() = 0;
    /// The topmost window under a point of accessibility space, docks, menus and the desktop
    /// included, but never one of this program's own.
    /// @param pid only windows of that process, when given
    [[nodiscard]] virtual std::optional<DesktopWindow> windowAt(Point point,
                                                                std::optional<pid_t> pid) = 0;
    [[nodiscard]] virtual ProcessWindows windowsOf(pid_t pid) = 0;
    /// Whether applications do not know where their windows are.
    [[nodiscard]] virtual bool placesAreInWindows() const { return false; }
};

} // namespace lumetry
