#pragma once

#include "base/lifetime.h"
#include "platform/linux/x11/capture/background.h"
#include "platform/linux/x11/capture/composer.h"
#include "platform/linux/x11/capture/grid.h"
#include "platform/linux/x11/capture/redirection.h"
#include "platform/linux/x11/capture/target.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/manager_selection.h"
#include "platform/linux/x11/windows/windows.h"
#include "platform/screen_capture.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetry::x11 {

/// What captures are made with.
struct CaptureSurroundings {
    Connection& connection;
    X11Windows& windows;
    CompositingManager& compositingManager;
    CaptureRedirection& redirection;
    CaptureFormats& formats;
    CaptureBackdrop& backdrop;
};

/// Draws the windows below another one as the screen would show them without it, at the size that
/// is wanted and in the server, so that only the result comes over. In most cases that is a single
/// wait for the server.
class X11ScreenCapture final : public ScreenCapture {
public:
    explicit X11ScreenCapture(const CaptureSurroundings& surroundings);

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override;
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size,
                                                     Interpolation interpolation) override;

private:
    /// What is kept in the server while captures keep coming.
    struct Workshop {
        explicit Workshop(const CaptureSurroundings& surroundings);

        Token redirection;
        CaptureTarget target;
        CaptureBackground background;
        CaptureComposer composer;
    };

    struct Wanted {
        const CaptureGrid& grid;
        std::vector<Rect> screens; ///< root coordinates
        std::vector<IntRect> kept; ///< of the grid's pixels; all others are missing
    };

    [[nodiscard]] Rect onRoot(const Rect& area);
    [[nodiscard]] Wanted onScreens(const CaptureGrid& grid);
    [[nodiscard]] std::optional<Bitmap> capture(const Wanted& wanted, std::uint32_t windowNumber);
    [[nodiscard]] bool openWorkshop();
    void closeWorkshopAfter(double seconds);
    [[nodiscard]] std::vector<CaptureLayer> layersBelow(std::uint32_t windowNumber);
    [[nodiscard]] bool captureBand(const Wanted& wanted, const IntRect& band,
                                   std::vector<CaptureLayer>& topmostFirst, Bitmap& bitmap);

    CaptureSurroundings surroundings_;
    Connection& connection_;
    std::optional<Workshop> workshop_;
    double lastUsed_ = 0; ///< RunLoop::now
    Lifetime lifetime_;
};

} // namespace lumetry::x11
