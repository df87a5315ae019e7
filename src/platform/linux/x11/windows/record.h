#pragma once

#include "base/geometry.h"
#include "platform/linux/x11/connection/connection.h"

#include <xcb/xcb.h>

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::x11 {

/// What kind of window it is, by how it is stacked.
enum class WindowKind {
    desktop, ///< the desktop itself, below everything
    normal,
    floating, ///< tool windows
    dock,     ///< panels and docks
    popup,    ///< menus, drop-downs, tooltips, everything that no window manager looks after
};

/// Space kept free at the edges of a window or of the screen.
struct Margins {
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;

    friend bool operator==(const Margins&, const Margins&) = default;
};

/// An edge of the root window that a panel keeps for itself (_NET_WM_STRUT_PARTIAL).
struct Strut {
    Margins depth; ///< from the edges of the root window
    Margins start; ///< where each begins along its edge, in root coordinates
    Margins end;   ///< where each ends, that pixel included

    friend bool operator==(const Strut&, const Strut&) = default;
};

/// The types, states and numbers that an application and its window manager have put on a window.
struct WindowProperties {
    std::vector<std::uint32_t> types;  ///< atoms, the preferred first
    std::vector<std::uint32_t> states; ///< atoms
    bool iconic = false;
    std::optional<std::uint32_t> desktop;
    std::optional<std::uint32_t> opacity;
    std::optional<Margins> frameExtents;
    std::optional<Margins> shadowExtents;
    std::optional<Strut> strut;
    std::vector<std::string> classes; ///< WM_CLASS and the application's identifier

    friend bool operator==(const WindowProperties&, const WindowProperties&) = default;
};

/// A child of the root window with what belongs to it: a frame with the application's window in
/// it, an application's window without a frame, a menu.
struct WindowRecord {
    xcb_window_t id = XCB_WINDOW_NONE;
    bool overrideRedirect = false;
    bool inputOnly = false;
    bool viewable = false;
    bool clickThrough = false; ///< nothing of it takes the pointer
    bool shaped = false;       ///< it does not fill its rectangle
    Rect rect;                 ///< root coordinates, border included
    double borderWidth = 0;
    xcb_visualid_t visual = 0;

    /// The application's own window where a window manager looks after it; the same as id when it
    /// has no frame.
    std::optional<xcb_window_t> client;
    Rect clientRect; ///< of the client, relative to the origin of rect
    std::optional<pid_t> pid;
    WindowProperties properties; ///< of the client, or of the window itself without one

    // What has to be read again.
    bool basicsDirty = true;
    bool detailsDirty = true;
    bool searchDue = true; ///< for a client, when there is none
};

/// What the records' atoms stand for.
class WindowTraits {
public:
    explicit WindowTraits(const Connection& connection) : connection_(connection) {}

    [[nodiscard]] WindowKind kindOf(const WindowRecord& window) const;
    /// Whether it is part of what the screen shows.
    /// @param currentDesktop absent when there is only one
    [[nodiscard]] bool isVisible(const WindowRecord& window,
                                 std::optional<std::uint32_t> currentDesktop) const;
    /// Whether it is there for the user to see and point at.
    /// @param currentDesktop absent when there is only one
    [[nodiscard]] bool isOnScreen(const WindowRecord& window,
                                  std::optional<std::uint32_t> currentDesktop) const;
    [[nodiscard]] bool isInTaskBar(const WindowRecord& window) const;

private:
    [[nodiscard]] bool hasState(const WindowRecord& window, Atom state) const;
    [[nodiscard]] std::optional<WindowKind> kindByType(const WindowRecord& window) const;

    const Connection& connection_;
};

/// What the window manager's layers are called in the window list.
[[nodiscard]] int layerOf(WindowKind kind);

/// From 0 to 1; 1 when it has none.
[[nodiscard]] double alphaOf(const WindowRecord& window);

/// In root coordinates: with its decorations, without its shadow.
[[nodiscard]] Rect boundsOf(const WindowRecord& window);

/// In root coordinates: what the application itself draws of it, without its shadow.
[[nodiscard]] Rect clientBoundsOf(const WindowRecord& window);

} // namespace lumetry::x11
