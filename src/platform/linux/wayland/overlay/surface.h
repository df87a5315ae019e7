#pragma once

#include "base/int_geometry.h"
#include "platform/display_list.h"
#include "platform/linux/wayland/connection/proxies.h"
#include "platform/linux/wayland/outputs/outputs.h"
#include "platform/linux/wayland/overlay/buffer.h"
#include "platform/rasterizer.h"

#include <functional>
#include <memory>
#include <vector>

namespace lumetry::wayland {

/// What of the compositor's surfaces are made with.
struct SurfaceMakers {
    Owned<wl_compositor> compositor;
    Owned<wl_shm> shm;
    Owned<zwlr_layer_shell_v1> layerShell;
    Owned<wp_viewporter> viewporter; ///< may be missing
};

/// Binds them; some are missing where the compositor does not offer them.
[[nodiscard]] SurfaceMakers bindSurfaceMakers(const Connection& connection);

/// Covers one output, above all windows, and shows a drawing. It has the output's own pixels,
/// unless the compositor cannot show them at a scale that is not whole. Clicks go through it.
class OverlaySurface {
public:
    struct Handlers {
        std::function<void()> onReady;  ///< it can be drawn on again, or has become another size
        std::function<void()> onClosed; ///< the compositor has taken it away
    };

    OverlaySurface(const SurfaceMakers& makers, wl_output* proxy, Output output, Handlers handlers);
    OverlaySurface(const OverlaySurface&) = delete;
    OverlaySurface& operator=(const OverlaySurface&) = delete;
    ~OverlaySurface();

    [[nodiscard]] const Output& output() const { return output_; }
    /// Takes over where the output lies now, and how dense it is.
    void setOutput(const Output& output);
    /// Pixels for each point.
    [[nodiscard]] double scale() const;
    [[nodiscard]] IntSize size() const;
    /// Whether what is drawn now would be shown next.
    [[nodiscard]] bool isReady() const;
    /// Whether it has been given something to show, and whether the compositor has shown that.
    [[nodiscard]] bool isPresented() const { return presented_; }
    [[nodiscard]] bool isShown() const { return presented_ && !frame_; }
    /// Shows the drawing (pixels of view space); only while it is ready.
    void show(DisplayList list, const Rasterizer& rasterizer);

private:
    struct LayerEvents;
    struct FrameEvents;

    void configured(IntSize points);
    [[nodiscard]] Buffer* freeBuffer();
    /// Of buffers that no longer fit.
    void retireBuffers();
    void present(Buffer& buffer, const std::vector<IntRect>& changed);

    const SurfaceMakers& makers_;
    Output output_;
    Handlers handlers_;
    Owned<wl_surface> surface_;
    Owned<wp_viewport> viewport_;
    Owned<zwlr_layer_surface_v1> layer_;
    Owned<wl_callback> frame_; ///< until the compositor has shown what it was given last
    IntSize points_;           ///< as the compositor wants it; empty until it has said so
    std::vector<std::unique_ptr<Buffer>> buffers_;
    std::vector<std::unique_ptr<Buffer>> retired_; ///< that the compositor still reads
    bool presented_ = false;                       ///< a buffer of this size
    DisplayList shown_;
};

} // namespace lumetry::wayland
