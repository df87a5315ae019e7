#pragma once

#include "base/color.h"
#include "base/handler_list.h"
#include "platform/linux/x11/connection/connection.h"

#include <functional>
#include <optional>
#include <string_view>

namespace lumetry::x11 {

/// Whether a program of its kind runs on this screen, told by a selection that it owns for as long
/// as it does.
class ManagerSelection {
public:
    /// @param selection its name without the number of the screen
    ManagerSelection(Connection& connection, std::string_view selection);
    ManagerSelection(const ManagerSelection&) = delete;
    ManagerSelection& operator=(const ManagerSelection&) = delete;
    ~ManagerSelection() = default;

    [[nodiscard]] bool isRunning() const { return owner_ != XCB_WINDOW_NONE; }
    /// Calls the handler whenever one has come, gone or made way for another.
    [[nodiscard]] Token onChange(std::function<void()> handler) {
        return handlers_.add(std::move(handler));
    }

protected:
    [[nodiscard]] Connection& connection() const { return connection_; }
    /// The window of the program; none when it does not run.
    [[nodiscard]] xcb_window_t owner() const { return owner_; }

private:
    void handle(const xcb_generic_event_t& event);

    Connection& connection_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    xcb_window_t owner_ = XCB_WINDOW_NONE;
    HandlerList<> handlers_;
    Token events_;
};

/// Puts the screen together, so that windows can be translucent.
class CompositingManager final : public ManagerSelection {
public:
    explicit CompositingManager(Connection& connection)
        : ManagerSelection(connection, "_NET_WM_CM_S") {}
};

/// Takes in icons (the XEmbed tray).
class SystemTray final : public ManagerSelection {
public:
    explicit SystemTray(Connection& connection)
        : ManagerSelection(connection, "_NET_SYSTEM_TRAY_S") {}

    /// The colour that it wants icons to be drawn in; absent where it does not say.
    [[nodiscard]] std::optional<Color> foreground();
};

} // namespace lumetry::x11
