#pragma once

#include "base/lifetime.h"
#include "base/token.h"
#include "platform/linux/wayland/connection/connection.h"
#include "platform/linux/wayland/outputs/outputs.h"
#include "platform/linux/wayland/overlay/surface.h"
#include "platform/overlay_window.h"
#include "platform/rasterizer.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace lumetry::wayland {

/// What overlay windows are made with.
struct OverlaySurroundings {
    Connection& connection;
    Outputs& outputs;
    const SurfaceMakers& makers;
    const Rasterizer& rasterizer;
};

/// A surface on each output while it is shown. Compositors give windows no numbers: this one's is
/// 0.
class WaylandOverlayWindow final : public OverlayWindow {
public:
    WaylandOverlayWindow(const OverlaySurroundings& surroundings, const Rect& contentRect);
    WaylandOverlayWindow(const WaylandOverlayWindow&) = delete;
    WaylandOverlayWindow& operator=(const WaylandOverlayWindow&) = delete;
    ~WaylandOverlayWindow() override;

    void setContentView(ContentView& view) override;
    [[nodiscard]] Rect frame() const override;
    void setFrame(const Rect& frame) override;
    [[nodiscard]] std::uint32_t windowNumber() const override { return 0; }
    void orderFrontRegardless() override;
    void orderOut() override;
    void setNeedsDisplay() override;

private:
    /// An output, and whether its surface is to be drawn anew.
    struct Cover {
        std::unique_ptr<OverlaySurface> surface; ///< none once the compositor has taken it away
        std::uint32_t output = 0;                ///< Output::global
        bool stale = true;
        bool toBeRaised = false;
        std::unique_ptr<OverlaySurface> lower = {}; ///< shows until the surface does
    };

    void coverOutputs();
    [[nodiscard]] std::unique_ptr<OverlaySurface> makeSurface(const Output& output);
    void raise(Cover& cover);
    void repaint(Cover& cover);
    void scheduleRepaint();
    void repaint();
    [[nodiscard]] DisplayList drawView(const OverlaySurface& surface);
    [[nodiscard]] Cover* coverOf(std::uint32_t output);

    OverlaySurroundings surroundings_;
    Rect onDesktop_; ///< desktop space: there it stays when the outputs move
    ContentView* view_ = nullptr;
    bool shown_ = false;
    bool repaintScheduled_ = false;
    std::vector<Cover> covers_;
    Lifetime lifetime_;
    Token outputChange_;
};

} // namespace lumetry::wayland
