#include "platform/linux/x11/windows/screens.h"

#include <xcb/randr.h>

#include <algorithm>
#include <utility>

namespace lumetry::x11 {

Screens::Screens(Connection& connection, std::optional<double> chosenScale)
    : connection_(connection), scale_(connection, chosenScale) {
    const auto& screen = connection.screen();
    const Rect root = {0, 0, static_cast<double>(screen.width_in_pixels),
                       static_cast<double>(screen.height_in_pixels)};
    layout_ = {root, {root}};
}

const ScreenLayout& Screens::layout() {
    if (!isCurrent_) {
        listen();
        readLayout();
    }
    layout_.scale = scale_.value();
    return layout_;
}

void Screens::readLayout() {
    auto* const c = connection_.get();
    const auto size = xcb_get_geometry(c, connection_.root());
    auto screens = readMonitors();
    const auto geometry = connection_.reply(xcb_get_geometry_reply, size);
    if (!geometry) {
        return;
    }
    isCurrent_ = true;
    layout_.root = {0, 0, static_cast<double>(geometry->width),
                    static_cast<double>(geometry->height)};
    if (screens.empty()) {
        screens.push_back(layout_.root);
    }
    layout_.screens = std::move(screens);
}

void Screens::listen() {
    if (listening_) {
        return;
    }
    listening_ = true;
    events_ = connection_.onEvent([this](const xcb_generic_event_t& event) {
        const int type = typeOf(event);
        const int randr = connection_.extensions().monitorsEvent;
        const bool rootChanged =
            type == XCB_CONFIGURE_NOTIFY &&
            eventAs<xcb_configure_notify_event_t>(event).window == connection_.root();
        const bool monitorsChanged =
            randr != 0 &&
            (type == randr + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == randr + XCB_RANDR_NOTIFY);
        if (rootChanged || monitorsChanged) {
            isCurrent_ = false;
        }
    });
    rootEvents_ = connection_.selectOnRoot(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (connection_.extensions().monitorsEvent != 0) {
        xcb_randr_select_input(connection_.get(), connection_.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
}

std::vector<Rect> Screens::readMonitors() {
    if (!connection_.extensions().monitors) {
        return {};
    }
    const auto monitors =
        connection_.reply(xcb_randr_get_monitors_reply,
                          xcb_randr_get_monitors(connection_.get(), connection_.root(), 1));
    std::vector<Rect> screens;
    if (!monitors) {
        return screens;
    }
    auto iterator = xcb_randr_get_monitors_monitors_iterator(monitors.get());
    for (; iterator.rem > 0; xcb_randr_monitor_info_next(&iterator)) {
        const auto& monitor = *iterator.data;
        const Rect rect = {static_cast<double>(monitor.x), static_cast<double>(monitor.y),
                           static_cast<double>(monitor.width), static_cast<double>(monitor.height)};
        // Mirrored outputs are one screen.
        if (rect.isEmpty() || std::ranges::find(screens, rect) != screens.end()) {
            continue;
        }
        screens.insert(monitor.primary != 0 ? screens.begin() : screens.end(), rect);
    }
    return screens;
}

} // namespace lumetry::x11
