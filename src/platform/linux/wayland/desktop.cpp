#include "platform/linux/wayland/desktop.h"

#include "platform/linux/system/environment.h"
#include "platform/linux/wayland/connection/connection.h"
#include "platform/linux/wayland/keys/modifier_keys.h"
#include "platform/linux/wayland/outputs/outputs.h"
#include "platform/linux/wayland/overlay/surface.h"
#include "platform/linux/wayland/overlay/window.h"

#include <optional>
#include <utility>

namespace lumetry {
namespace {

class WaylandOverlayWindows final : public OverlayWindows {
public:
    explicit WaylandOverlayWindows(const wayland::OverlaySurroundings& surroundings)
        : surroundings_(surroundings) {}

    [[nodiscard]] std::unique_ptr<OverlayWindow>
    makeWindow(const Rect& contentRect, const OverlayWindowStyle& /*style*/) override {
        return std::make_unique<wayland::WaylandOverlayWindow>(surroundings_, contentRect);
    }

private:
    wayland::OverlaySurroundings surroundings_;
};

} // namespace

struct WaylandDesktop::Parts {
    explicit Parts(std::unique_ptr<wayland::Connection> opened)
        : connection(std::move(opened)), makers(wayland::bindSurfaceMakers(*connection)),
          outputs(*connection), modifierKeys(*connection) {}

    std::unique_ptr<wayland::Connection> connection;
    wayland::SurfaceMakers makers;
    wayland::Outputs outputs;
    wayland::ModifierKeys modifierKeys;
    std::optional<WaylandOverlayWindows> overlayWindows;
};

std::unique_ptr<WaylandDesktop> WaylandDesktop::open(FileDescriptorWatcher& watcher,
                                                     RunLoop& runLoop, std::string& problem) {
    const std::string name = environmentText("WAYLAND_DISPLAY");
    if (name.empty()) {
        problem = "There is no Wayland compositor: start Lumetry inside a desktop session, or set "
                  "WAYLAND_DISPLAY.";
        return nullptr;
    }
    auto connection = wayland::Connection::open(watcher, runLoop, name, problem);
    if (!connection) {
        return nullptr;
    }
    auto parts = std::make_unique<Parts>(std::move(connection));
    const auto& makers = parts->makers;
    if (!makers.compositor || !makers.shm || !makers.layerShell) {
        problem = "This Wayland session lets no program draw above its windows (wlr-layer-shell is "
                  "missing): log in to KDE Plasma or to an X11 session instead.";
        return nullptr;
    }
    return std::unique_ptr<WaylandDesktop>(new WaylandDesktop(std::move(parts)));
}

WaylandDesktop::WaylandDesktop(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

WaylandDesktop::~WaylandDesktop() = default;

Rect WaylandDesktop::primaryFrame() const {
    const auto& outputs = parts_->outputs.layout().outputs;
    return outputs.empty() ? Rect{} : outputs.front().frame;
}

std::vector<Screen> WaylandDesktop::screens() const {
    std::vector<Screen> screens;
    const auto& layout = parts_->outputs.layout();
    screens.reserve(layout.outputs.size());
    for (const auto& output : layout.outputs) {
        const Rect frame = layout.toScreenSpace(output.frame);
        screens.push_back({frame, frame, output.scale});
    }
    return screens;
}

Token WaylandDesktop::onScreenChange(std::function<void()> handler) {
    return parts_->outputs.onChange(std::move(handler));
}

bool WaylandDesktop::tellsModifierKeys() const {
    return parts_->modifierKeys.areTold();
}

ModifierFlags WaylandDesktop::modifierFlags() const {
    return parts_->modifierKeys.down();
}

Token WaylandDesktop::onModifierFlags(std::function<void()> handler) {
    return parts_->modifierKeys.watch(std::move(handler));
}

OverlayWindows& WaylandDesktop::overlayWindows(const Rasterizer& rasterizer) {
    auto& windows = parts_->overlayWindows;
    return windows ? *windows
                   : windows.emplace(wayland::OverlaySurroundings{
                         *parts_->connection, parts_->outputs, parts_->makers, rasterizer});
}

void WaylandDesktop::onConnectionLost(std::function<void()> handler) {
    parts_->connection->onLost = std::move(handler);
}

} // namespace lumetry
