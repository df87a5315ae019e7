#pragma once

#include "base/geometry.h"
#include "base/token.h"
#include "platform/input.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/overlay_window.h"
#include "platform/rasterizer.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumetry {

/// The Wayland side of the desktop: screens and the overlay. Everything it has handed out ends
/// before it does; tokens may outlive it.
///
/// Desktop space is the compositor's own: points, y downwards, its origin anywhere.
class WaylandDesktop {
public:
    /// Connects to the compositor that $WAYLAND_DISPLAY names.
    /// @param problem a sentence for the user that says what to do, when the answer is empty
    [[nodiscard]] static std::unique_ptr<WaylandDesktop>
    open(FileDescriptorWatcher& watcher, RunLoop& runLoop, std::string& problem);
    WaylandDesktop(const WaylandDesktop&) = delete;
    WaylandDesktop& operator=(const WaylandDesktop&) = delete;
    ~WaylandDesktop();

    /// The frame of the primary screen in desktop space: accessibility space begins at its upper
    /// left corner, screen space at its lower left one. Empty while there is no screen.
    [[nodiscard]] Rect primaryFrame() const;
    /// All screens, the primary one first. No compositor tells what panels leave of them: visible
    /// frames are whole ones.
    [[nodiscard]] std::vector<Screen> screens() const;
    /// Calls the handler whenever screens have come, gone, moved or changed their scale.
    [[nodiscard]] Token onScreenChange(std::function<void()> handler);

    /// Whether the compositor tells which modifier keys are down.
    [[nodiscard]] bool tellsModifierKeys() const;
    /// Those that are down; none while nobody watches.
    [[nodiscard]] ModifierFlags modifierFlags() const;
    /// Calls the handler whenever that changes.
    [[nodiscard]] Token onModifierFlags(std::function<void()> handler);

    /// @param rasterizer draws the windows' contents, and outlives them; that of the first call
    /// counts
    [[nodiscard]] OverlayWindows& overlayWindows(const Rasterizer& rasterizer);

    /// Calls the handler once, from the main queue, when the compositor has gone. From then on
    /// nothing is shown.
    void onConnectionLost(std::function<void()> handler);

private:
    struct Parts;
    explicit WaylandDesktop(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

} // namespace lumetry
