#pragma once

#include "base/handler_list.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/manager_selection.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace lumetry::x11 {

/// What a desktop declares about the density of its screens.
struct Declarations {
    std::string resources; ///< of the X server's resource manager: "Xft.dpi:\t144\n" among others
    std::span<const std::uint8_t> settings; ///< what the XSETTINGS manager says; empty without one
};

/// How many device pixels a point has: the settings' Xft/DPI, else the resource Xft.dpi, both by 96
/// dots per inch, else the settings' Gdk/WindowScalingFactor. What is no number above 0 counts as
/// not declared. Kept between 0.5 and 8; 1 where nothing is declared.
[[nodiscard]] double declaredScale(const Declarations& declarations);

/// Tells programs how the desktop wants them to look.
class SettingsManager final : public ManagerSelection {
public:
    explicit SettingsManager(Connection& connection)
        : ManagerSelection(connection, "_XSETTINGS_S") {}

    using ManagerSelection::owner;
};

/// Knows how many device pixels a point of the desktop has. The server is asked at the first
/// question and listened to from then on, until nobody has asked for some time.
class DesktopScale {
public:
    /// @param chosen by the user, whatever the desktop declares
    DesktopScale(Connection& connection, std::optional<double> chosen);
    DesktopScale(const DesktopScale&) = delete;
    DesktopScale& operator=(const DesktopScale&) = delete;
    ~DesktopScale() = default;

    [[nodiscard]] double value();
    /// Calls the handler when it is heard that the scale has become another one.
    [[nodiscard]] Token onChange(std::function<void()> handler) {
        return handlers_.add(std::move(handler));
    }

private:
    void listen();
    void handle(const xcb_generic_event_t& event);
    void refresh();
    [[nodiscard]] double read();

    Connection& connection_;
    std::optional<double> chosen_;
    std::optional<double> known_;
    double lastAsked_ = 0; ///< RunLoop::now
    HandlerList<> handlers_;
    std::optional<SettingsManager> manager_; ///< from the first question on
    Token managerChange_;
    Token events_;
    Token rootEvents_; ///< while somebody asks
};

} // namespace lumetry::x11
