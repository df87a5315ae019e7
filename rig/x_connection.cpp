#include "rig/x_connection.h"

#include <stdexcept>

namespace lumetry::desktop {
namespace {

Reply<xcb_get_property_reply_t> property(const XConnection& server, xcb_window_t window,
                                         std::string_view name) {
    constexpr std::uint32_t everything = 1U << 20; // in 32-bit words
    const auto request = xcb_get_property(server.get(), 0, window, server.atom(name),
                                          XCB_GET_PROPERTY_TYPE_ANY, 0, everything);
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(server.get(), request, nullptr));
    return reply && reply->type != XCB_ATOM_NONE ? std::move(reply) : nullptr;
}

} // namespace

XConnection::XConnection(const std::string& display) {
    int number = 0;
    connection_ = xcb_connect(display.c_str(), &number);
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw std::runtime_error("no X server answers on display " + display);
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; number > 0; --number) {
        xcb_screen_next(&screens);
    }
    screen_ = screens.data;
}

XConnection::~XConnection() {
    xcb_disconnect(connection_);
}

xcb_atom_t XConnection::atom(std::string_view name) const {
    const auto request =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection_, request, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::optional<std::string> XConnection::textProperty(xcb_window_t window,
                                                     std::string_view name) const {
    const auto reply = property(*this, window, name);
    if (!reply) {
        return std::nullopt;
    }
    const auto* bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return std::string(bytes, static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}

std::vector<std::uint32_t> XConnection::numbersProperty(xcb_window_t window,
                                                        std::string_view name) const {
    const auto reply = property(*this, window, name);
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

xcb_window_t XConnection::selectionOwner(std::string_view selection) const {
    const auto request = xcb_get_selection_owner(connection_, atom(selection));
    const Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection_, request, nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

void XConnection::sync() const {
    const auto request = xcb_get_input_focus(connection_);
    const Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, request, nullptr));
}

} // namespace lumetry::desktop
