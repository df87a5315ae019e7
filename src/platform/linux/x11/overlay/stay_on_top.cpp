#include "platform/linux/x11/overlay/stay_on_top.h"

#include <algorithm>
#include <utility>

namespace lumetry::x11 {
namespace {

/// Whoever covers the window again that soon does so because it was raised.
constexpr double contestSeconds = 0.1;
constexpr double firstPauseSeconds = 0.05;
constexpr double longestPauseSeconds = 2;

} // namespace

StayOnTop::StayOnTop(Connection& connection, xcb_window_t window)
    : connection_(connection), window_(window),
      rootEvents_(connection.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY)),
      events_(connection.onEvent([this](const auto& event) { handle(event); })),
      batches_(connection.onEventsHandled([this] { eventsHandled(); })) {
    raise();
}

void StayOnTop::handle(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
    case XCB_CREATE_NOTIFY:
        isAbove(eventAs<xcb_create_notify_event_t>(event).window, false);
        break;
    case XCB_REPARENT_NOTIFY: {
        const auto& reparent = eventAs<xcb_reparent_notify_event_t>(event);
        if (reparent.event == connection_.root() && reparent.parent == connection_.root()) {
            isAbove(reparent.window, false);
        } else {
            above_.erase(reparent.window);
        }
        break;
    }
    case XCB_DESTROY_NOTIFY:
        above_.erase(eventAs<xcb_destroy_notify_event_t>(event).window);
        break;
    case XCB_MAP_NOTIFY:
        if (const auto& map = eventAs<xcb_map_notify_event_t>(event); above_.contains(map.window)) {
            isAbove(map.window, true);
        }
        break;
    case XCB_CIRCULATE_NOTIFY:
        if (const auto& circulate = eventAs<xcb_circulate_notify_event_t>(event);
            circulate.place == XCB_PLACE_ON_TOP) {
            isAbove(circulate.window, true);
        }
        break;
    case XCB_CONFIGURE_NOTIFY:
        configured(eventAs<xcb_configure_notify_event_t>(event));
        break;
    default:
        break;
    }
}

void StayOnTop::configured(const xcb_configure_notify_event_t& event) {
    if (event.event != connection_.root()) {
        return;
    }
    if (event.window == window_) {
        // Our own raise has come about: everything before it is below now.
        above_.clear();
    } else if (event.above_sibling == window_ || above_.contains(event.above_sibling)) {
        const bool hidden = above_.contains(event.window);
        isAbove(event.window, !hidden);
    } else {
        above_.erase(event.window);
    }
}

void StayOnTop::isAbove(xcb_window_t other, bool mapped) {
    if (other == window_) {
        return;
    }
    above_.insert(other);
    covered_ = covered_ || mapped;
}

void StayOnTop::eventsHandled() {
    if (std::exchange(covered_, false)) {
        raiseSoon();
    }
}

void StayOnTop::raiseSoon() {
    if (scheduled_) {
        return;
    }
    RunLoop& runLoop = connection_.runLoop();
    const double since = runLoop.now() - lastRaise_;
    if (since < contestSeconds) {
        pause_ = std::clamp(pause_ * 2, firstPauseSeconds, longestPauseSeconds);
    } else if (since > pause_ + contestSeconds) {
        pause_ = 0;
    }
    if (since >= pause_) {
        raise();
        return;
    }
    scheduled_ = true;
    runLoop.after(pause_ - since, lifetime_.guard([this] {
        scheduled_ = false;
        raise();
    }));
}

void StayOnTop::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_.get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    connection_.flush();
    lastRaise_ = connection_.runLoop().now();
}

} // namespace lumetry::x11
