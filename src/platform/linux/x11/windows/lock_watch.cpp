#include "platform/linux/x11/windows/lock_watch.h"

#include <xcb/screensaver.h>

#include <algorithm>
#include <utility>

namespace lumetry::x11 {
namespace {

bool isOn(std::uint8_t saverState) {
    return saverState == XCB_SCREENSAVER_STATE_ON || saverState == XCB_SCREENSAVER_STATE_CYCLE;
}

} // namespace

X11LockWatch::X11LockWatch(Connection& connection, X11Windows& windows)
    : connection_(connection), windows_(windows),
      rootEvents_(connection.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY)),
      events_(connection.onEvent([this](const auto& event) { handle(event); })),
      batches_(connection.onEventsHandled([this] { eventsHandled(); })) {
    watchSaver();
    locker_ = windows_.lockerOnTop();
    wasLocked_ = locked();
}

void X11LockWatch::watchSaver() {
    if (!connection_.extensions().screenSaver) {
        return;
    }
    auto* const c = connection_.get();
    xcb_screensaver_select_input(c, connection_.root(), XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
    const auto saver = connection_.reply(xcb_screensaver_query_info_reply,
                                         xcb_screensaver_query_info(c, connection_.root()));
    saverIsOn_ = saver && isOn(saver->state);
}

void X11LockWatch::handle(const xcb_generic_event_t& event) {
    const Extensions& extensions = connection_.extensions();
    const int type = typeOf(event);
    if (extensions.screenSaver && type == extensions.saverEvent + XCB_SCREENSAVER_NOTIFY) {
        saverIsOn_ = isOn(eventAs<xcb_screensaver_notify_event_t>(event).state);
    } else if (type == XCB_MAP_NOTIFY) {
        const auto& map = eventAs<xcb_map_notify_event_t>(event);
        rise(map.window, map.override_redirect != 0);
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& configure = eventAs<xcb_configure_notify_event_t>(event);
        rise(configure.window, configure.override_redirect != 0);
    } else {
        lookDue_ = lookDue_ || (locker_ != XCB_WINDOW_NONE && concernsLocker(event));
    }
}

void X11LockWatch::rise(xcb_window_t window, bool overrideRedirect) {
    if (connection_.isOwnResource(window)) {
        return;
    }
    if (overrideRedirect) {
        risen_.push_back(window);
    }
    lookDue_ = lookDue_ || overrideRedirect || locker_ != XCB_WINDOW_NONE;
}

bool X11LockWatch::concernsLocker(const xcb_generic_event_t& event) const {
    switch (typeOf(event)) {
    case XCB_CIRCULATE_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_DESTROY_NOTIFY:
        return true;
    case XCB_PROPERTY_NOTIFY:
        // By this alone a window manager's frame shows that it is one.
        return eventAs<xcb_property_notify_event_t>(event).atom == connection_.atom(Atom::wmState);
    default:
        return false;
    }
}

void X11LockWatch::eventsHandled() {
    if (std::exchange(lookDue_, false)) {
        look();
    }
    if (std::exchange(wasLocked_, locked()) != locked() && onChange) {
        onChange();
    }
}

void X11LockWatch::look() {
    // A locker that something has come to lie above goes on top again in a moment: until it is gone
    // it locks.
    if (!cameUp_ || !windows_.isLocker(locker_)) {
        locker_ = windows_.lockerOnTop();
    }
    cameUp_ = locker_ != XCB_WINDOW_NONE &&
              (cameUp_ || std::ranges::find(risen_, locker_) != risen_.end());
    risen_.clear();
}

} // namespace lumetry::x11
