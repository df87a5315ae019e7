#pragma once

#include "rig/accessible_tree.h"
#include "rig/desktop_windows.h"
#include "rig/overlay_reader.h"
#include "rig/private_desktop.h"
#include "rig/processes/child_process.h"

#include <functional>
#include <optional>
#include <string>

namespace lumetry::desktop {

inline constexpr const char* onboardingTitle = "Welcome to Lumetry";

/// A person in front of a desktop with Lumetry, who sees windows, reads what is in them and has a
/// mouse and a keyboard. All methods that wait throw std::runtime_error when they wait in vain.
class ShellUser {
public:
    /// @param program Lumetry
    ShellUser(PrivateDesktop& desktop, std::string program);

    /// Lumetry shows what is in its windows to assistive technology even while the desktop has
    /// accessibility switched off, so that it can be read.
    [[nodiscard]] ChildProcess startLumetry(Environment variables = {});

    [[nodiscard]] std::optional<DesktopWindow> window(const std::string& title) const;
    void waitForWindow(const std::string& title) const;
    void waitUntilClosed(const std::string& title) const;
    /// Whether it is the window that has the keyboard.
    [[nodiscard]] bool isInFront(const std::string& title) const;
    /// Asks the window to close, as the button of its frame does.
    void close(const std::string& title) const;

    /// An element of Lumetry's windows that is shown.
    Accessible waitFor(const std::string& role, const std::string& name);
    [[nodiscard]] bool sees(const std::string& role, const std::string& name) const;
    void click(const Accessible& element);
    void clickButton(const std::string& name) { click(waitFor("push button", name)); }
    void pressShortcut();

    [[nodiscard]] bool inspecting() const { return overlay_.texts().has_value(); }
    void waitUntilInspecting(bool wanted) const;

    /// The icon in the tray of the X server.
    [[nodiscard]] std::optional<Rect> trayIcon() const;
    /// Clicks it and waits for the menu.
    void openTrayMenu();
    /// Menus are not told to assistive technology by Qt: their windows are looked for.
    [[nodiscard]] bool menuIsOpen() const;

private:
    void clickWhereItRests(const std::string& what,
                           const std::function<std::optional<Rect>()>& where);
    /// The windows and what is in Lumetry's, for the message of a failing test.
    [[nodiscard]] std::string describe() const;
    [[nodiscard]] std::optional<Accessible> find(const std::string& role,
                                                 const std::string& name) const;

    PrivateDesktop& desktop_;
    std::string program_;
    AccessibleTree tree_;
    OverlayReader overlay_;
};

} // namespace lumetry::desktop
