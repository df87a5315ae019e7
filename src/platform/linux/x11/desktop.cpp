#include "platform/linux/x11/desktop.h"

#include "platform/linux/system/environment.h"
#include "platform/linux/x11/capture/background.h"
#include "platform/linux/x11/capture/redirection.h"
#include "platform/linux/x11/capture/screen_capture.h"
#include "platform/linux/x11/capture/target.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/manager_selection.h"
#include "platform/linux/x11/input/event_monitors.h"
#include "platform/linux/x11/input/hot_keys.h"
#include "platform/linux/x11/input/keyboard.h"
#include "platform/linux/x11/input/pointer.h"
#include "platform/linux/x11/overlay/window.h"
#include "platform/linux/x11/windows/lock_watch.h"
#include "platform/linux/x11/windows/windows.h"

#include <optional>
#include <utility>

namespace lumetry {
namespace {

class X11OverlayWindows final : public OverlayWindows {
public:
    explicit X11OverlayWindows(const x11::OverlaySurroundings& surroundings)
        : surroundings_(surroundings) {}

    [[nodiscard]] std::unique_ptr<OverlayWindow>
    makeWindow(const Rect& contentRect, const OverlayWindowStyle& style) override {
        return std::make_unique<x11::X11OverlayWindow>(surroundings_, contentRect, style);
    }

private:
    x11::OverlaySurroundings surroundings_;
};

} // namespace

struct X11Desktop::Parts {
    Parts(std::unique_ptr<x11::Connection> opened, std::optional<double> chosenScale)
        : connection(std::move(opened)), windows(*connection, chosenScale), keyboard(*connection),
          pointer(*connection, windows, keyboard), eventMonitors(*connection, windows, keyboard),
          captureRedirection(*connection), captureFormats(*connection) {}

    x11::X11HotKeys& usedHotKeys() {
        return hotKeys ? *hotKeys : hotKeys.emplace(*connection, keyboard);
    }

    /// From the first use on.
    x11::CompositingManager& watchedCompositingManager() {
        return compositingManager ? *compositingManager : compositingManager.emplace(*connection);
    }

    x11::CaptureBackdrop& usedCaptureBackdrop() {
        return captureBackdrop
                   ? *captureBackdrop
                   : captureBackdrop.emplace(*connection, windows, watchedCompositingManager(),
                                             captureFormats);
    }

    x11::SystemTray& watchedSystemTray() {
        return systemTray ? *systemTray : systemTray.emplace(*connection);
    }

    std::unique_ptr<x11::Connection> connection;
    x11::X11Windows windows;
    x11::Keyboard keyboard;
    x11::X11Pointer pointer;
    x11::X11EventMonitors eventMonitors;
    x11::CaptureRedirection captureRedirection;
    x11::CaptureFormats captureFormats;
    std::optional<x11::CompositingManager> compositingManager;
    std::optional<x11::CaptureBackdrop> captureBackdrop;
    std::optional<x11::SystemTray> systemTray;
    std::optional<x11::X11HotKeys> hotKeys;
    std::optional<X11OverlayWindows> overlayWindows;
    std::optional<x11::X11ScreenCapture> screenCapture;
};

std::unique_ptr<X11Desktop> X11Desktop::open(FileDescriptorWatcher& watcher, RunLoop& runLoop,
                                             std::string& problem,
                                             std::optional<double> chosenScale) {
    const std::string display = environmentText("DISPLAY");
    if (display.empty()) {
        problem = environmentText("WAYLAND_DISPLAY").empty()
                      ? "There is no display: start Lumetry inside a desktop session, or set "
                        "DISPLAY to an X server."
                      : std::string(x11::waylandProblem);
        return nullptr;
    }
    auto connection = x11::Connection::open(watcher, runLoop, display, problem);
    if (!connection) {
        return nullptr;
    }
    return std::unique_ptr<X11Desktop>(
        new X11Desktop(std::make_unique<Parts>(std::move(connection), chosenScale)));
}

X11Desktop::X11Desktop(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

X11Desktop::~X11Desktop() = default;

WindowServer& X11Desktop::windowServer() {
    return parts_->windows;
}

DesktopWindows& X11Desktop::desktopWindows() {
    return parts_->windows;
}

Pointer& X11Desktop::pointer() {
    return parts_->pointer;
}

EventMonitors& X11Desktop::eventMonitors() {
    return parts_->eventMonitors;
}

HotKeys& X11Desktop::hotKeys() {
    return parts_->usedHotKeys();
}

void X11Desktop::onHotKeyTaken(std::function<void()> handler) {
    parts_->usedHotKeys().onTaken(std::move(handler));
}

std::unique_ptr<LockWatch> X11Desktop::watchLock() {
    return std::make_unique<x11::X11LockWatch>(*parts_->connection, parts_->windows);
}

std::uint16_t X11Desktop::keyCode(std::uint32_t key) {
    return parts_->keyboard.keyCode(key);
}

bool X11Desktop::isModifier(std::uint32_t key) {
    return parts_->keyboard.isModifier(key);
}

bool X11Desktop::hasSystemTray() {
    return parts_->watchedSystemTray().isRunning();
}

std::optional<Color> X11Desktop::systemTrayForeground() {
    return parts_->watchedSystemTray().foreground();
}

Token X11Desktop::onSystemTrayChange(std::function<void()> handler) {
    return parts_->watchedSystemTray().onChange(std::move(handler));
}

OverlayWindows& X11Desktop::overlayWindows(const Rasterizer& rasterizer) {
    if (!parts_->overlayWindows) {
        parts_->overlayWindows.emplace(x11::OverlaySurroundings{
            *parts_->connection, parts_->windows, parts_->watchedCompositingManager(),
            parts_->captureRedirection, parts_->usedCaptureBackdrop(), rasterizer});
    }
    return *parts_->overlayWindows;
}

ScreenCapture& X11Desktop::screenCapture() {
    if (!parts_->screenCapture) {
        parts_->screenCapture.emplace(x11::CaptureSurroundings{
            *parts_->connection, parts_->windows, parts_->watchedCompositingManager(),
            parts_->captureRedirection, parts_->captureFormats, parts_->usedCaptureBackdrop()});
    }
    return *parts_->screenCapture;
}

void X11Desktop::onConnectionLost(std::function<void()> handler) {
    parts_->connection->onLost = std::move(handler);
}

std::size_t X11Desktop::roundTrips() const {
    return parts_->connection->roundTrips();
}

} // namespace lumetry
