#include "platform/linux/plasma/desktop.h"

#include "platform/linux/bus/connection.h"
#include "platform/linux/kwin/bridge.h"
#include "platform/linux/kwin/global_shortcuts.h"
#include "platform/linux/kwin/input.h"
#include "platform/linux/kwin/screen_capture.h"
#include "platform/linux/kwin/screenshot_permission.h"
#include "platform/linux/kwin/windows.h"
#include "platform/linux/system/environment.h"
#include "platform/linux/wayland/desktop.h"

#include <utility>

namespace lumetry {

struct PlasmaDesktop::Parts {
    Parts(FileDescriptorWatcher& watcher, RunLoop& runLoop, std::unique_ptr<kwin::Bridge> opened,
          std::unique_ptr<WaylandDesktop> surfaces)
        : bridge(std::move(opened)), wayland(std::move(surfaces)), shortcuts(watcher, runLoop),
          capture(*bridge, watcher, runLoop, [this] { return outputs(); }),
          windows(
              *bridge, [this] { return outputs(); }, [this] { return capture.isAllowed(); },
              [this] {
                  return capture.isAllowed() || kwin::permitScreenshots(kwin::userDataFolder());
              },
              runLoop),
          input(
              *bridge, shortcuts,
              {[this] { return wayland->tellsModifierKeys(); },
               [this] { return wayland->modifierFlags(); },
               [this](std::function<void()> handler) {
                   return wayland->onModifierFlags(std::move(handler));
               }},
              [this] { return outputs(); }, runLoop) {}

    /// In KWin's coordinates, the primary one first.
    [[nodiscard]] std::vector<kwin::Output> outputs() const {
        const Rect primary = wayland->primaryFrame();
        std::vector<kwin::Output> outputs;
        for (const Screen& screen : wayland->screens()) {
            const Rect frame = flipped(screen.frame, primary.height);
            outputs.push_back(
                {{frame.x + primary.x, frame.y + primary.y, frame.width, frame.height},
                 screen.backingScaleFactor});
        }
        return outputs;
    }

    std::unique_ptr<kwin::Bridge> bridge;
    std::unique_ptr<WaylandDesktop> wayland;
    kwin::GlobalShortcuts shortcuts;
    kwin::KWinCapture capture;
    kwin::KWinWindows windows;
    kwin::KWinInput input;
};

bool PlasmaDesktop::isPresent() {
    if (environmentText("WAYLAND_DISPLAY").empty()) {
        return false;
    }
    const BusConnection bus = openBus(sessionBusAddress());
    return bus && dbus_bus_name_has_owner(bus.get(), "org.kde.KWin", nullptr) != FALSE;
}

std::unique_ptr<PlasmaDesktop> PlasmaDesktop::open(FileDescriptorWatcher& watcher, RunLoop& runLoop,
                                                   std::string& problem) {
    auto wayland = WaylandDesktop::open(watcher, runLoop, problem);
    auto bridge = wayland ? kwin::Bridge::open(watcher, runLoop, problem) : nullptr;
    if (!bridge) {
        return nullptr;
    }
    return std::unique_ptr<PlasmaDesktop>(new PlasmaDesktop(
        std::make_unique<Parts>(watcher, runLoop, std::move(bridge), std::move(wayland))));
}

PlasmaDesktop::PlasmaDesktop(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
PlasmaDesktop::~PlasmaDesktop() = default;

WindowServer& PlasmaDesktop::windowServer() {
    return parts_->windows;
}
DesktopWindows& PlasmaDesktop::desktopWindows() {
    return parts_->windows;
}
Pointer& PlasmaDesktop::pointer() {
    return parts_->input;
}
EventMonitors& PlasmaDesktop::eventMonitors() {
    return parts_->input;
}
ScreenCapture& PlasmaDesktop::screenCapture() {
    return parts_->capture;
}
HotKeys& PlasmaDesktop::hotKeys() {
    return parts_->shortcuts;
}
void PlasmaDesktop::onHotKeyTaken(std::function<void()> handler) {
    parts_->shortcuts.onTaken(std::move(handler));
}
OverlayWindows& PlasmaDesktop::overlayWindows(const Rasterizer& rasterizer) {
    return parts_->wayland->overlayWindows(rasterizer);
}
void PlasmaDesktop::onConnectionLost(std::function<void()> handler) {
    parts_->wayland->onConnectionLost(std::move(handler));
}
std::size_t PlasmaDesktop::roundTrips() const {
    return parts_->bridge->roundTrips();
}

} // namespace lumetry
