#include "platform/linux/x11/windows/record.h"

#include <algorithm>
#include <array>
#include <limits>

namespace lumetry::x11 {
namespace {

struct TypeKind {
    Atom type;
    WindowKind kind;
};

constexpr std::array<TypeKind, 11> typeKinds = {{
    {Atom::netWmWindowTypeDesktop, WindowKind::desktop},
    {Atom::netWmWindowTypeDock, WindowKind::dock},
    {Atom::netWmWindowTypeToolbar, WindowKind::floating},
    {Atom::netWmWindowTypeUtility, WindowKind::floating},
    {Atom::netWmWindowTypeMenu, WindowKind::popup},
    {Atom::netWmWindowTypeDropdownMenu, WindowKind::popup},
    {Atom::netWmWindowTypePopupMenu, WindowKind::popup},
    {Atom::netWmWindowTypeTooltip, WindowKind::popup},
    {Atom::netWmWindowTypeNotification, WindowKind::popup},
    {Atom::netWmWindowTypeCombo, WindowKind::popup},
    {Atom::netWmWindowTypeDnd, WindowKind::popup},
}};

bool contains(const std::vector<std::uint32_t>& atoms, xcb_atom_t atom) {
    return std::ranges::find(atoms, atom) != atoms.end();
}

Rect shrunk(const Rect& rect, const Margins& margins) {
    return {rect.x + margins.left, rect.y + margins.top, rect.width - margins.left - margins.right,
            rect.height - margins.top - margins.bottom};
}

Rect expanded(const Rect& rect, const Margins& margins) {
    return shrunk(rect, {-margins.left, -margins.right, -margins.top, -margins.bottom});
}

/// In root coordinates.
Rect clientRectOf(const WindowRecord& window) {
    if (!window.client || *window.client == window.id) {
        return window.rect;
    }
    Rect client = window.clientRect;
    client.x += window.rect.x;
    client.y += window.rect.y;
    return client;
}

} // namespace

bool WindowTraits::hasState(const WindowRecord& window, Atom state) const {
    return contains(window.properties.states, connection_.atom(state));
}

std::optional<WindowKind> WindowTraits::kindByType(const WindowRecord& window) const {
    for (const std::uint32_t type : window.properties.types) {
        if (type == connection_.atom(Atom::netWmWindowTypeNormal) ||
            type == connection_.atom(Atom::netWmWindowTypeDialog)) {
            return WindowKind::normal;
        }
        for (const TypeKind& known : typeKinds) {
            if (type == connection_.atom(known.type)) {
                return known.kind;
            }
        }
    }
    return std::nullopt;
}

WindowKind WindowTraits::kindOf(const WindowRecord& window) const {
    const WindowKind kind = kindByType(window).value_or(WindowKind::normal);
    // Nobody keeps a window in its place that no window manager looks after.
    const bool inPlace = window.client || kind == WindowKind::desktop || kind == WindowKind::dock;
    return inPlace ? kind : WindowKind::popup;
}

bool WindowTraits::isVisible(const WindowRecord& window,
                             std::optional<std::uint32_t> currentDesktop) const {
    constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
    if (!window.viewable || window.inputOnly || window.properties.iconic ||
        hasState(window, Atom::netWmStateHidden)) {
        return false;
    }
    const auto desktop = window.properties.desktop;
    return !currentDesktop || !desktop || *desktop == allDesktops || *desktop == *currentDesktop;
}

bool WindowTraits::isOnScreen(const WindowRecord& window,
                              std::optional<std::uint32_t> currentDesktop) const {
    return !window.clickThrough && isVisible(window, currentDesktop);
}

bool WindowTraits::isInTaskBar(const WindowRecord& window) const {
    return window.client && kindByType(window).value_or(WindowKind::normal) == WindowKind::normal &&
           !hasState(window, Atom::netWmStateSkipTaskbar);
}

int layerOf(WindowKind kind) {
    switch (kind) {
    case WindowKind::desktop:
        return std::numeric_limits<int>::min() + 20;
    case WindowKind::normal:
        return 0;
    case WindowKind::floating:
        return 3;
    case WindowKind::dock:
        return 25;
    case WindowKind::popup:
        return 101;
    }
    return 0;
}

double alphaOf(const WindowRecord& window) {
    constexpr double opaque = 0xFFFFFFFF;
    return window.properties.opacity ? *window.properties.opacity / opaque : 1;
}

Rect boundsOf(const WindowRecord& window) {
    const WindowProperties& properties = window.properties;
    Rect bounds = window.rect;
    if (window.client && *window.client != window.id && properties.frameExtents) {
        const Rect decorated = expanded(clientRectOf(window), *properties.frameExtents);
        // A rolled-up window keeps the size of what it has rolled up.
        const Rect visible = intersect(decorated, window.rect);
        bounds = visible.isNull() ? window.rect : visible;
    }
    return properties.shadowExtents ? shrunk(bounds, *properties.shadowExtents) : bounds;
}

Rect clientBoundsOf(const WindowRecord& window) {
    const Rect client = clientRectOf(window);
    const auto& shadow = window.properties.shadowExtents;
    return shadow ? shrunk(client, *shadow) : client;
}

} // namespace lumetry::x11
