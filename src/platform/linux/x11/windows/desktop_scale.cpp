#include "platform/linux/x11/windows/desktop_scale.h"

#include "platform/linux/windows/root_space.h"
#include "platform/linux/x11/connection/atoms.h"
#include "platform/linux/x11/windows/declared_scale.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace lumetry::x11 {
namespace {

/// Once nobody has asked for that long, the next change ends listening.
constexpr double idleSeconds = 5;

/// In units of four bytes; far more than any desktop has.
constexpr std::uint32_t longestProperty = 256 * 1024;

std::span<const std::uint8_t> bytesOf(const Reply<xcb_get_property_reply_t>& property) {
    constexpr std::uint8_t bitsPerByte = 8;
    if (!property || property->format != bitsPerByte) {
        return {};
    }
    return {static_cast<const std::uint8_t*>(xcb_get_property_value(property.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

} // namespace

DesktopScale::DesktopScale(Connection& connection, std::optional<double> chosen)
    : connection_(connection), chosen_(chosen ? usableScale(*chosen) : std::nullopt) {}

double DesktopScale::value() {
    if (chosen_) {
        return *chosen_;
    }
    const double now = connection_.runLoop().now();
    const bool isStale = now - std::exchange(lastAsked_, now) > idleSeconds;
    if (!known_ || isStale) {
        listen();
        refresh();
    }
    return *known_;
}

void DesktopScale::listen() {
    if (!manager_) {
        manager_.emplace(connection_);
        managerChange_ = manager_->onChange([this] { refresh(); });
        events_ = connection_.onEvent([this](const auto& event) { handle(event); });
    }
    if (!rootEvents_) {
        rootEvents_ = connection_.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
}

void DesktopScale::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != XCB_PROPERTY_NOTIFY) {
        return;
    }
    const auto& change = eventAs<xcb_property_notify_event_t>(event);
    const bool ofResources =
        change.window == connection_.root() && change.atom == XCB_ATOM_RESOURCE_MANAGER;
    const bool ofSettings = change.window == manager_->owner() &&
                            change.atom == connection_.atom(Atom::xsettingsSettings);
    if (ofResources || ofSettings) {
        refresh();
    } else if (connection_.runLoop().now() - lastAsked_ > idleSeconds) {
        rootEvents_.reset();
    }
}

void DesktopScale::refresh() {
    const auto before = std::exchange(known_, read());
    if (before && known_ != before) {
        handlers_.call();
    }
}

double DesktopScale::read() {
    auto* const c = connection_.get();
    const xcb_window_t manager = manager_->owner();
    if (manager != XCB_WINDOW_NONE) {
        const std::uint32_t eventMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(c, manager, XCB_CW_EVENT_MASK, &eventMask);
    }
    const auto resources = xcb_get_property(c, 0, connection_.root(), XCB_ATOM_RESOURCE_MANAGER,
                                            XCB_ATOM_STRING, 0, longestProperty);
    const xcb_atom_t property = connection_.atom(Atom::xsettingsSettings);
    const auto settings = xcb_get_property(c, 0, manager, property, property, 0, longestProperty);
    const auto resourcesProperty = connection_.reply(xcb_get_property_reply, resources);
    const auto settingsProperty = connection_.reply(xcb_get_property_reply, settings);
    const auto text = bytesOf(resourcesProperty);
    return declaredScale({{text.begin(), text.end()}, bytesOf(settingsProperty)});
}

} // namespace lumetry::x11
