#pragma once

#include "platform/linux/x11/capture_background.h"
#include "platform/linux/x11/capture_composer.h"
#include "platform/linux/x11/capture_formats.h"
#include "platform/linux/x11/capture_grid.h"
#include "platform/linux/x11/capture_redirection.h"
#include "platform/linux/x11/capture_target.h"
#include "platform/linux/x11/connection.h"
#include "platform/linux/x11/screen_manager.h"
#include "platform/linux/x11/x11_windows.h"
#include "platform/screen_capture.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace lumetry::x11 {

/// Draws the windows below another one as the screen would show them without it, at the size that
/// is wanted and in the server, so that only the result comes over. In most cases that is a single
/// wait for the server.
class X11ScreenCapture final : public ScreenCapture {
public:
    X11ScreenCapture(Connection& connection, X11Windows& windows,
                     CompositingManager& compositingManager, CaptureRedirection& redirection);

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override;
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     PixelSize size,
                                                     Interpolation interpolation) override;

private:
    /// What is kept in the server while captures keep coming.
    struct Workshop {
        Workshop(Connection& connection, CaptureRedirection& redirecting,
                 const CaptureFormats& formats);

        Token redirection;
        CaptureTarget target;
        CaptureBackground background;
        CaptureComposer composer;
    };

    [[nodiscard]] Rect onRoot(const Rect& area);
    [[nodiscard]] std::optional<Bitmap> capture(const CaptureGrid& grid,
                                                std::uint32_t windowNumber);
    [[nodiscard]] bool openWorkshop();
    void closeWorkshopAfter(double seconds);
    [[nodiscard]] std::vector<CaptureLayer> layersBelow(std::uint32_t windowNumber) const;
    [[nodiscard]] bool captureBand(const CaptureGrid& grid, const PixelRect& band,
                                   std::vector<CaptureLayer>& topmostFirst,
                                   std::span<const PixelRect> onScreens, Bitmap& bitmap);

    Connection& connection_;
    X11Windows& windows_;
    CompositingManager& compositingManager_;
    CaptureRedirection& redirection_;
    std::optional<CaptureFormats> formats_;
    std::optional<Workshop> workshop_;
    double lastUsed_ = 0; ///< RunLoop::now
    std::shared_ptr<X11ScreenCapture*> self_ = std::make_shared<X11ScreenCapture*>(this);
};

} // namespace lumetry::x11
