#include "platform/linux/x11/compositing_manager.h"

#include <xcb/xfixes.h>

#include <string>

namespace lumetry::x11 {

CompositingManager::CompositingManager(Connection& connection)
    : connection_(connection),
      events_(connection.onEvent([this](const auto& event) { handle(event); })) {
    auto* const c = connection.get();
    const std::string name = "_NET_WM_CM_S" + std::to_string(connection.screenNumber());
    const auto atom = connection.reply(
        xcb_intern_atom_reply,
        xcb_intern_atom(c, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    if (!atom) {
        return;
    }
    selection_ = atom->atom;
    xcb_xfixes_select_selection_input(c, connection.root(), selection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const auto owner =
        connection.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(c, selection_));
    running_ = owner && owner->owner != XCB_WINDOW_NONE;
}

void CompositingManager::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != connection_.extensions().fixesEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        return;
    }
    const auto& change = eventAs<xcb_xfixes_selection_notify_event_t>(event);
    if (change.selection != selection_) {
        return;
    }
    const bool running = change.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER &&
                         change.owner != XCB_WINDOW_NONE;
    if (running != running_) {
        running_ = running;
        handlers_.call();
    }
}

} // namespace lumetry::x11
