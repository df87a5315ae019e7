#include "rig/desktop_windows.h"

#include "rig/processes/wait_until.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cmath>
#include <optional>
#include <utility>

namespace lumetry::desktop {
namespace {

std::vector<xcb_window_t> childrenOf(const XConnection& server, xcb_window_t window) {
    const auto request = xcb_query_tree(server.get(), window);
    const Reply<xcb_query_tree_reply_t> reply(xcb_query_tree_reply(server.get(), request, nullptr));
    if (!reply) {
        return {};
    }
    const auto* children = xcb_query_tree_children(reply.get());
    return {children, children + xcb_query_tree_children_length(reply.get())};
}

std::optional<Rect> boundsOf(const XConnection& server, xcb_window_t window) {
    const auto sizeRequest = xcb_get_geometry(server.get(), window);
    const auto placeRequest = xcb_translate_coordinates(server.get(), window, server.root(), 0, 0);
    const Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(server.get(), sizeRequest, nullptr));
    const Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(server.get(), placeRequest, nullptr));
    if (!size || !place) {
        return std::nullopt;
    }
    return Rect{static_cast<double>(place->dst_x), static_cast<double>(place->dst_y),
                static_cast<double>(size->width), static_cast<double>(size->height)};
}

std::string titleOf(const XConnection& server, xcb_window_t window) {
    auto title = server.textProperty(window, "_NET_WM_NAME");
    if (!title) {
        title = server.textProperty(window, "WM_NAME");
    }
    return title.value_or("");
}

std::optional<DesktopWindow> mappedWindow(const XConnection& server, xcb_window_t id) {
    const auto request = xcb_get_window_attributes(server.get(), id);
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(server.get(), request, nullptr));
    const auto bounds = boundsOf(server, id);
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE || !bounds) {
        return std::nullopt;
    }
    DesktopWindow window;
    window.id = id;
    window.title = titleOf(server, id);
    window.overrideRedirect = attributes->override_redirect != 0;
    window.bounds = *bounds;
    if (const auto classes = server.textProperty(id, "WM_CLASS")) {
        // Two texts, each ended by a zero byte.
        const auto middle = std::min(classes->find('\0'), classes->size());
        window.instanceName = classes->substr(0, middle);
        window.className = middle < classes->size() ? classes->c_str() + middle + 1 : "";
    }
    return window;
}

std::uint32_t asNumber(double coordinate) {
    return static_cast<std::uint32_t>(std::lround(coordinate));
}

void askWindowManager(const XConnection& server, xcb_window_t window,
                      const std::array<std::uint32_t, 4>& values) {
    // Static gravity: the place is that of the contents, not of the frame around them.
    constexpr std::uint32_t staticGravity = 10;
    constexpr std::uint32_t allFour = 0xFU << 8U;
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = server.atom("_NET_MOVERESIZE_WINDOW");
    message.data.data32[0] = staticGravity | allFour;
    std::ranges::copy(values, message.data.data32 + 1);
    const auto bytes = std::bit_cast<std::array<char, sizeof message>>(message);
    xcb_send_event(server.get(), 0, server.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   bytes.data());
    server.sync();
}

} // namespace

std::vector<DesktopWindow> desktopWindows(const XConnection& server) {
    const auto managed = server.numbersProperty(server.root(), "_NET_CLIENT_LIST");
    std::vector<DesktopWindow> windows;
    for (const auto id : managed) {
        if (auto window = mappedWindow(server, id)) {
            windows.push_back(std::move(*window));
        }
    }
    for (const auto id : childrenOf(server, server.root())) {
        auto window = mappedWindow(server, id);
        if (window && std::ranges::find(managed, id) == managed.end() &&
            (window->overrideRedirect || !window->className.empty())) {
            windows.push_back(std::move(*window));
        }
    }
    return windows;
}

WindowPredicate hasTitle(std::string title) {
    return
        [title = std::move(title)](const DesktopWindow& window) { return window.title == title; };
}

WindowPredicate hasClass(std::string className) {
    return [className = std::move(className)](const DesktopWindow& window) {
        return window.className == className;
    };
}

DesktopWindow waitForWindow(const XConnection& server, const WindowPredicate& predicate) {
    return *requireUntil("a window to appear", [&]() -> std::optional<DesktopWindow> {
        const auto windows = desktopWindows(server);
        const auto found = std::ranges::find_if(windows, predicate);
        return found == windows.end() ? std::nullopt : std::optional(*found);
    });
}

DesktopWindow placeWindow(const XConnection& server, xcb_window_t window, const Rect& bounds) {
    const std::array<std::uint32_t, 4> values = {asNumber(bounds.x), asNumber(bounds.y),
                                                 asNumber(bounds.width), asNumber(bounds.height)};
    const bool managed = !server.numbersProperty(server.root(), "_NET_SUPPORTING_WM_CHECK").empty();
    // An application that is still starting may lay its window out once more after the first time.
    constexpr auto betweenTimes = std::chrono::milliseconds(500);
    std::optional<std::chrono::steady_clock::time_point> asked;
    return *requireUntil("a window to take its place", [&]() -> std::optional<DesktopWindow> {
        auto placed = mappedWindow(server, window);
        if (placed && placed->bounds == bounds) {
            return placed;
        }
        const auto now = std::chrono::steady_clock::now();
        if (!asked || now - *asked >= betweenTimes) {
            asked = now;
            if (managed) {
                askWindowManager(server, window, values);
            } else {
                xcb_configure_window(server.get(), window,
                                     XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                     values.data());
            }
        }
        return std::nullopt;
    });
}

} // namespace lumetry::desktop
