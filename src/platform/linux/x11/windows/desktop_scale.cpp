#include "platform/linux/x11/windows/desktop_scale.h"

#include "platform/linux/windows/root_space.h"
#include "platform/linux/x11/connection/atoms.h"

#include <xcb/xcb_xrm.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace lumetry::x11 {
namespace {

constexpr double dotsPerInch = 96;

/// Reads numbers and texts from the start of some bytes; once it has come to their end, nothing.
class SettingsReader {
public:
    explicit SettingsReader(std::span<const std::uint8_t> bytes)
        : left_(bytes), isBigEndian_(byte().value_or(0) == 1) {}

    std::optional<std::uint8_t> byte() {
        const auto bytes = take(1);
        return bytes.empty() ? std::nullopt : std::optional(bytes[0]);
    }

    std::optional<std::uint32_t> number(std::size_t size) {
        const auto bytes = take(size);
        if (bytes.empty()) {
            return std::nullopt;
        }
        constexpr unsigned bitsPerByte = 8;
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < size; ++i) {
            number = number << bitsPerByte | bytes[isBigEndian_ ? i : size - 1 - i];
        }
        return number;
    }

    /// Takes in what fills it up to a multiple of four bytes.
    std::string_view text(std::size_t length) {
        const auto bytes = take(length);
        skip((4 - length % 4) % 4);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    bool skip(std::size_t count) { return count == 0 || !take(count).empty(); }

private:
    std::span<const std::uint8_t> take(std::size_t count) {
        if (count > left_.size()) {
            left_ = {};
            return {};
        }
        const auto taken = left_.first(count);
        left_ = left_.subspan(count);
        return taken;
    }

    std::span<const std::uint8_t> left_;
    bool isBigEndian_;
};

/// The value of a setting that is a whole number.
std::optional<std::int32_t> integerSetting(std::span<const std::uint8_t> bytes,
                                           std::string_view wanted) {
    enum : std::uint8_t { integer, text, color };
    constexpr std::size_t colorSize = 8;
    SettingsReader reader(bytes);
    reader.skip(3);
    (void)reader.number(4); // how often they have changed
    for (std::uint32_t left = reader.number(4).value_or(0); left > 0; --left) {
        const auto type = reader.byte();
        reader.skip(1);
        const auto nameLength = reader.number(2);
        if (!type || !nameLength) {
            break;
        }
        const std::string_view name = reader.text(*nameLength);
        (void)reader.number(4); // when it has last changed
        if (*type == integer) {
            const auto value = reader.number(4);
            if (name == wanted && value) {
                return static_cast<std::int32_t>(*value);
            }
        } else if (*type == text) {
            (void)reader.text(reader.number(4).value_or(0));
        } else if (*type != color || !reader.skip(colorSize)) {
            break;
        }
    }
    return std::nullopt;
}

std::optional<double> numberResource(const std::string& resources, const char* name) {
    const std::unique_ptr<xcb_xrm_database_t, decltype(&xcb_xrm_database_free)> database(
        xcb_xrm_database_from_string(resources.c_str()), xcb_xrm_database_free);
    char* value = nullptr;
    if (!database || xcb_xrm_resource_get_string(database.get(), name, nullptr, &value) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(value, std::free);
    char* end = nullptr;
    const double number = std::strtod(value, &end);
    const bool isNumber =
        end != value && std::string_view(end).find_first_not_of(" \t") == std::string_view::npos;
    return isNumber ? std::optional(number) : std::nullopt;
}

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

double declaredScale(const Declarations& declarations) {
    constexpr double settingsPerDot = 1024;
    if (const auto dots = integerSetting(declarations.settings, "Xft/DPI")) {
        if (const auto scale = usableScale(*dots / settingsPerDot / dotsPerInch)) {
            return *scale;
        }
    }
    if (const auto dots = numberResource(declarations.resources, "Xft.dpi")) {
        if (const auto scale = usableScale(*dots / dotsPerInch)) {
            return *scale;
        }
    }
    const auto factor = integerSetting(declarations.settings, "Gdk/WindowScalingFactor");
    return usableScale(factor.value_or(1)).value_or(1);
}

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
