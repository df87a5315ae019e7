#include "rig/shell_user.h"

#include "rig/processes/wait_until.h"
#include "rig/tray_icon.h"

#include <X11/keysym.h>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr const char* applicationName = "lumetry";
constexpr const char* overlayTitle = "Lumetry overlay";

} // namespace

void ShellUser::clickWhereItRests(const std::string& what,
                                  const std::function<std::optional<Rect>()>& where) {
    // A window that has just opened may still be put elsewhere.
    constexpr auto rest = std::chrono::milliseconds(250);
    std::optional<Rect> place;
    auto since = std::chrono::steady_clock::now();
    requireUntil(what + " to come to rest", [&] {
        const auto now = std::chrono::steady_clock::now();
        if (auto current = where(); current != place) {
            place = current;
            since = now;
        }
        return place && place->width > 1 && now - since >= rest;
    });
    desktop_.input().movePointer(static_cast<int>(place->midX()), static_cast<int>(place->midY()));
    desktop_.input().click();
}

ShellUser::ShellUser(PrivateDesktop& desktop, std::string program)
    : desktop_(desktop), program_(std::move(program)), tree_(desktop.accessibilityBusAddress()),
      overlay_(desktop.server()) {}

ChildProcess ShellUser::startLumetry(Environment variables) {
    variables["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    return desktop_.start({program_}, variables);
}

std::optional<DesktopWindow> ShellUser::window(const std::string& title) const {
    const auto all = desktopWindows(desktop_.server());
    const auto found = std::ranges::find(all, title, &DesktopWindow::title);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

void ShellUser::waitForWindow(const std::string& title) const {
    requireUntil("the window \"" + title + '"', [&] { return window(title).has_value(); });
}

void ShellUser::waitUntilClosed(const std::string& title) const {
    requireUntil("the window \"" + title + "\" to close", [&] { return !window(title); });
}

bool ShellUser::isInFront(const std::string& title) const {
    const auto wanted = window(title);
    const auto active =
        desktop_.server().numbersProperty(desktop_.server().root(), "_NET_ACTIVE_WINDOW");
    return wanted && !active.empty() && active.front() == wanted->id;
}

void ShellUser::close(const std::string& title) const {
    const auto closing = window(title);
    if (!closing) {
        throw std::runtime_error("there is no window \"" + title + "\" to close");
    }
    const auto& server = desktop_.server();
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = closing->id;
    message.type = server.atom("WM_PROTOCOLS");
    message.data.data32[0] = server.atom("WM_DELETE_WINDOW");
    xcb_send_event(server.get(), 0, closing->id, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    server.sync();
}

std::optional<Accessible> ShellUser::find(const std::string& role, const std::string& name) const {
    for (const Accessible& application : tree_.applications()) {
        if (application.name() != applicationName) {
            continue;
        }
        auto found = application.find([&](const Accessible& element) {
            return element.name() == name && element.role() == role && element.showing();
        });
        if (found) {
            return found;
        }
    }
    return std::nullopt;
}

std::string ShellUser::describe() const {
    std::string all;
    for (const DesktopWindow& one : desktopWindows(desktop_.server())) {
        all += "window \"" + one.title + "\" of " + one.instanceName + " at " +
               std::to_string(one.bounds.x) + " " + std::to_string(one.bounds.y) + '\n';
    }
    if (const auto icon = trayIcon()) {
        all += "tray icon at " + std::to_string(icon->x) + " " + std::to_string(icon->y) + '\n';
    }
    const auto [x, y] = desktop_.input().pointer();
    all += "pointer at " + std::to_string(x) + " " + std::to_string(y) + '\n';
    for (const Accessible& application : tree_.applications()) {
        all += application.describe();
    }
    return all;
}

Accessible ShellUser::waitFor(const std::string& role, const std::string& name) {
    std::optional<Accessible> found;
    if (!waitUntil([&] { return (found = find(role, name)).has_value(); })) {
        throw std::runtime_error("waited for the " + role + " \"" + name + "\"; there is\n" +
                                 describe());
    }
    return *found;
}

bool ShellUser::sees(const std::string& role, const std::string& name) const {
    return find(role, name).has_value();
}

void ShellUser::click(const Accessible& element) {
    clickWhereItRests("an element", [&] { return element.extents(); });
}

void ShellUser::pressShortcut() {
    auto& input = desktop_.input();
    input.pressKey(XK_Control_L);
    input.pressKey(XK_Shift_L);
    input.typeKey(XK_m);
    input.releaseKey(XK_Shift_L);
    input.releaseKey(XK_Control_L);
}

void ShellUser::waitUntilInspecting(bool wanted) const {
    requireUntil(wanted ? "inspect mode" : "the end of inspect mode",
                 [&] { return inspecting() == wanted; });
}

std::optional<Rect> ShellUser::trayIcon() const {
    return trayIconOf(desktop_.server(), applicationName);
}

bool ShellUser::menuIsOpen() const {
    return std::ranges::any_of(desktopWindows(desktop_.server()), [](const DesktopWindow& one) {
        return one.overrideRedirect && one.instanceName == applicationName &&
               one.title != overlayTitle;
    });
}

void ShellUser::openTrayMenu() {
    clickWhereItRests("the icon in the tray", [&] { return trayIcon(); });
    if (!waitUntil([&] { return menuIsOpen(); })) {
        throw std::runtime_error("no menu opens; there is\n" + describe());
    }
}

} // namespace lumetry::desktop
