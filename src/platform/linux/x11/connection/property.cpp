#include "platform/linux/x11/connection/property.h"

namespace lumetry::x11 {

PropertyRequest requestProperty(Connection& connection, xcb_window_t window, xcb_atom_t property,
                                std::uint32_t words) {
    return {xcb_get_property(connection.get(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                             words)};
}

PropertyRequest requestProperty(Connection& connection, xcb_window_t window, Atom property,
                                std::uint32_t words) {
    return requestProperty(connection, window, connection.atom(property), words);
}

std::vector<std::uint32_t> numbers(Connection& connection, PropertyRequest request) {
    const auto reply = connection.reply(xcb_get_property_reply, request.cookie);
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* const first =
        static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::optional<std::uint32_t> firstNumber(Connection& connection, PropertyRequest request) {
    const auto all = numbers(connection, request);
    return all.empty() ? std::nullopt : std::optional(all.front());
}

std::string text(Connection& connection, PropertyRequest request) {
    const auto reply = connection.reply(xcb_get_property_reply, request.cookie);
    if (!reply || reply->format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

} // namespace lumetry::x11
