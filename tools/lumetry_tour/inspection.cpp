#include "inspection.h"

#include "rig/lumetry_settings.h"
#include "rig/processes/wait_until.h"

#include <X11/keysym.h>

#include <chrono>
#include <stdexcept>
#include <utility>

namespace lumetry::desktop {

Inspection::Inspection(PrivateDesktop& desktop, const std::string& lumetry, Album& album)
    : desktop_(desktop), album_(album), overlay_(desktop.server()) {
    markOnboarded(desktop);
    lumetry_ = desktop_.start({lumetry});
    requireUntil("Lumetry's overlay", [this] {
        requireLumetry();
        return overlay_.texts().has_value();
    });
}

void Inspection::hover(const Rect& place, const std::string& picture, const std::string& header) {
    moveTo(place);
    const auto readout = awaitReadout("the glance", [&](const OverlayReadout& shown) {
        return header.empty() ? !shown.header.empty() : shown.header == header;
    });
    album_.takePicture(desktop_.server(), picture, readout.line());
}

void Inspection::measure(const Rect& from, const Rect& to, const std::string& picture) {
    moveTo(from);
    [[maybe_unused]] const auto pinned = awaitReadout(
        "the glance", [](const OverlayReadout& readout) { return !readout.header.empty(); });
    desktop_.input().pressKey(XK_Alt_L);
    moveTo(to);
    const auto readout = awaitReadout(
        "a distance", [](const OverlayReadout& shown) { return !shown.distances.empty(); });
    album_.takePicture(desktop_.server(), picture, readout.line());
    desktop_.input().releaseKey(XK_Alt_L);
}

void Inspection::leave(const std::string& picture) {
    desktop_.input().typeKey(XK_Escape);
    requireUntil("the end of inspect mode", [this] {
        requireLumetry();
        return !overlay_.window();
    });
    album_.takePicture(desktop_.server(), picture, "Lumetry has left");
}

void Inspection::moveTo(const Rect& place) {
    constexpr int steps = 20;
    desktop_.input().glidePointer(static_cast<int>(place.midX()), static_cast<int>(place.midY()),
                                  steps);
}

OverlayReadout Inspection::awaitReadout(const std::string& what,
                                        const std::function<bool(const OverlayReadout&)>& wanted) {
    // On its way the pointer crosses other elements: what stays is what it has come to rest on.
    constexpr auto rest = std::chrono::milliseconds(400);
    constexpr auto patience = std::chrono::milliseconds(700);
    std::optional<OverlayReadout> last;
    auto since = std::chrono::steady_clock::now();
    int wiggle = 0;
    requireUntil(what, [&] {
        requireLumetry();
        const auto now = std::chrono::steady_clock::now();
        auto readout = overlay_.readout();
        if (readout != last) {
            last = std::move(readout);
            since = now;
        }
        const bool arrived = last && *last != shown_ && wanted(*last);
        if (!arrived && now - since >= patience) {
            const auto [x, y] = desktop_.input().pointer();
            wiggle = wiggle == 1 ? -1 : 1;
            desktop_.input().movePointer(x + wiggle, y);
            since = now;
        }
        return arrived && now - since >= rest;
    });
    shown_ = *last;
    return shown_;
}

void Inspection::requireLumetry() {
    if (!lumetry_->running()) {
        throw std::runtime_error("Lumetry ended by itself: " + lumetry_->standardError());
    }
}

} // namespace lumetry::desktop
