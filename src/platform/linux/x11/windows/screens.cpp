#include "platform/linux/x11/windows/screens.h"

#include <xcb/randr.h>

#include <algorithm>

namespace lumetry::x11 {
namespace {

/// Whether the stretch from start to end, that pixel included, meets the one from low to high.
bool meets(double start, double end, double low, double high) {
    return start < high && end >= low;
}

} // namespace

Point ScreenLayout::toScreenSpace(Point onRoot) const {
    return flipped(space().toAccessibility(onRoot), primary().height / scale);
}

Rect ScreenLayout::toScreenSpace(const Rect& onRoot) const {
    return flipped(space().toAccessibility(onRoot), primary().height / scale);
}

Rect ScreenLayout::fromScreenSpace(const Rect& rect) const {
    return space().toRoot(flipped(rect, primary().height / scale));
}

Rect withoutStruts(const Rect& screen, const Rect& root, std::span<const Strut> struts) {
    double left = screen.minX();
    double right = screen.maxX();
    double top = screen.minY();
    double bottom = screen.maxY();
    // A strut is counted from the root's edge. The panel is on the screen in which it ends; the
    // screens it passes on the way there keep nothing free for it.
    const auto endsIn = [](double edge, double low, double high) {
        return edge > low && edge < high;
    };
    for (const Strut& strut : struts) {
        const double fromLeft = root.minX() + strut.depth.left;
        const double fromRight = root.maxX() - strut.depth.right;
        const double fromTop = root.minY() + strut.depth.top;
        const double fromBottom = root.maxY() - strut.depth.bottom;
        const auto rows = [&](double start, double end) {
            return meets(start, end, screen.minY(), screen.maxY());
        };
        const auto columns = [&](double start, double end) {
            return meets(start, end, screen.minX(), screen.maxX());
        };
        if (strut.depth.left > 0 && endsIn(fromLeft, screen.minX(), screen.maxX()) &&
            rows(strut.start.left, strut.end.left)) {
            left = std::max(left, fromLeft);
        }
        if (strut.depth.right > 0 && endsIn(fromRight, screen.minX(), screen.maxX()) &&
            rows(strut.start.right, strut.end.right)) {
            right = std::min(right, fromRight);
        }
        if (strut.depth.top > 0 && endsIn(fromTop, screen.minY(), screen.maxY()) &&
            columns(strut.start.top, strut.end.top)) {
            top = std::max(top, fromTop);
        }
        if (strut.depth.bottom > 0 && endsIn(fromBottom, screen.minY(), screen.maxY()) &&
            columns(strut.start.bottom, strut.end.bottom)) {
            bottom = std::min(bottom, fromBottom);
        }
    }
    const Rect free = {left, top, right - left, bottom - top};
    return free.isEmpty() ? screen : free;
}

std::vector<Screen> describeScreens(const ScreenLayout& layout, std::span<const Strut> struts,
                                    const std::optional<Rect>& workArea) {
    std::vector<Screen> screens;
    for (const Rect& screen : layout.screens) {
        Rect visible = withoutStruts(screen, layout.root, struts);
        if (struts.empty() && workArea && layout.screens.size() == 1) {
            const Rect usable = intersect(screen, *workArea);
            visible = usable.isNull() ? screen : usable;
        }
        screens.push_back(
            {layout.toScreenSpace(screen), layout.toScreenSpace(visible), layout.scale});
    }
    return screens;
}

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
