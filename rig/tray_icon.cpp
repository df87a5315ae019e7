#include "rig/tray_icon.h"

#include <vector>

namespace lumetry::desktop {
namespace {

std::vector<xcb_window_t> childrenOf(const XConnection& server, xcb_window_t window) {
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(server.get(), xcb_query_tree(server.get(), window), nullptr));
    if (!tree) {
        return {};
    }
    const auto* const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

bool isViewable(const XConnection& server, xcb_window_t window) {
    const Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        server.get(), xcb_get_window_attributes(server.get(), window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

/// The first window of that class on screen below that one.
xcb_window_t findIcon(const XConnection& server, xcb_window_t window,
                      const std::string& className) {
    for (const xcb_window_t child : childrenOf(server, window)) {
        const auto names = server.textProperty(child, "WM_CLASS");
        const bool fits = names && names->find(className) != std::string::npos;
        // The children of the root are windows of their own, not icons in a tray.
        if (fits && window != server.root() && isViewable(server, child)) {
            return child;
        }
        if (const xcb_window_t found = findIcon(server, child, className)) {
            return found;
        }
    }
    return XCB_NONE;
}

} // namespace

std::optional<Rect> trayIconOf(const XConnection& server, const std::string& className) {
    const xcb_window_t tray = server.selectionOwner("_NET_SYSTEM_TRAY_S0");
    const xcb_window_t icon =
        tray == XCB_NONE ? XCB_NONE : findIcon(server, server.root(), className);
    if (icon == XCB_NONE) {
        return std::nullopt;
    }
    const Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(server.get(), xcb_get_geometry(server.get(), icon), nullptr));
    const Reply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
        server.get(), xcb_translate_coordinates(server.get(), icon, server.root(), 0, 0), nullptr));
    if (!size || !place) {
        return std::nullopt;
    }
    return Rect{static_cast<double>(place->dst_x), static_cast<double>(place->dst_y),
                static_cast<double>(size->width), static_cast<double>(size->height)};
}

} // namespace lumetry::desktop
