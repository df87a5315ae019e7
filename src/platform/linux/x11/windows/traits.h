#pragma once

#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/windows/record.h"

#include <optional>

namespace lumetry::x11 {

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
