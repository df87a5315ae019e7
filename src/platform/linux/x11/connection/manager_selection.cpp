#include "platform/linux/x11/connection/manager_selection.h"

#include "platform/linux/x11/connection/atoms.h"

#include <xcb/xfixes.h>

#include <array>
#include <string>
#include <string_view>

namespace lumetry::x11 {

ManagerSelection::ManagerSelection(Connection& connection, std::string_view selection)
    : connection_(connection),
      events_(connection.onEvent([this](const auto& event) { handle(event); })) {
    auto* const c = connection.get();
    const std::string name = std::string(selection) + std::to_string(connection.screenNumber());
    const std::array<std::string_view, 1> names = {name};
    selection_ = connection.intern(names).front();
    if (selection_ == XCB_ATOM_NONE) {
        return;
    }
    xcb_xfixes_select_selection_input(c, connection.root(), selection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const auto owner =
        connection.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(c, selection_));
    if (owner) {
        owner_ = owner->owner;
    }
}

void ManagerSelection::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != connection_.extensions().fixesEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        return;
    }
    const auto& change = eventAs<xcb_xfixes_selection_notify_event_t>(event);
    if (change.selection != selection_) {
        return;
    }
    const xcb_window_t before = owner_;
    const bool owned = change.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER;
    owner_ = owned ? change.owner : xcb_window_t{XCB_WINDOW_NONE};
    if (owner_ != before) {
        handlers_.call();
    }
}

std::optional<Color> SystemTray::foreground() {
    // Twelve numbers: red, green and blue of the foreground and of three kinds of notice.
    constexpr std::uint32_t colorCount = 12;
    constexpr double strongest = 0xFFFF;
    const auto property = connection().reply(
        xcb_get_property_reply, xcb_get_property(connection().get(), 0, owner(),
                                                 connection().atom(Atom::netSystemTrayColors),
                                                 XCB_ATOM_CARDINAL, 0, colorCount));
    if (!property || property->format != 32 || property->length < 3) {
        return std::nullopt;
    }
    const auto* const colors =
        static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
    return Color{colors[0] / strongest, colors[1] / strongest, colors[2] / strongest};
}

} // namespace lumetry::x11
