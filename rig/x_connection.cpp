#include "rig/x_connection.h"

#include <array>
#include <bit>
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

xcb_visualtype_t rootVisualOf(const xcb_screen_t& screen) {
    auto depths = xcb_screen_allowed_depths_iterator(&screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == screen.root_visual) {
                return *visuals.data;
            }
        }
    }
    return {};
}

struct Component {
    std::uint32_t mask; ///< in a pixel of the root window
    unsigned shift;     ///< in a colour
};

std::array<Component, 3> componentsOf(const xcb_visualtype_t& visual) {
    return {{{visual.red_mask, 16}, {visual.green_mask, 8}, {visual.blue_mask, 0}}};
}

constexpr std::uint32_t strongest = 0xFF; ///< component of a colour

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
    visual_ = rootVisualOf(*screen_);
}

XConnection::~XConnection() {
    xcb_disconnect(connection_);
}

std::uint32_t XConnection::pixelOf(std::uint32_t color) const {
    std::uint32_t pixel = 0;
    for (const auto& [mask, shift] : componentsOf(visual_)) {
        const std::uint32_t most = mask >> std::countr_zero(mask);
        const std::uint32_t component = (color >> shift) & strongest;
        pixel |= (component * most + strongest / 2) / strongest << std::countr_zero(mask);
    }
    return pixel;
}

std::uint32_t XConnection::colorOf(std::uint32_t pixel) const {
    constexpr std::uint32_t opaque = 0xFF000000;
    if (visual_.blue_mask == strongest) {
        return pixel | opaque; // as in a colour
    }
    std::uint32_t color = opaque;
    for (const auto& [mask, shift] : componentsOf(visual_)) {
        const std::uint32_t most = mask >> std::countr_zero(mask);
        const std::uint32_t component = (pixel & mask) >> std::countr_zero(mask);
        color |= (component * strongest + most / 2) / most << shift;
    }
    return color;
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
