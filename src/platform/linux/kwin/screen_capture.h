#pragma once

#include "base/int_geometry.h"
#include "platform/linux/kwin/bridge.h"
#include "platform/linux/kwin/windows.h"
#include "platform/screen_capture.h"

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::kwin {

/// Reads the pixels of windows from KWin, which leaves the overlay out: it captures one window at a
/// time. What was captured a moment ago is taken again.
class KWinCapture final : public ScreenCapture {
public:
    KWinCapture(Bridge& bridge, std::function<std::vector<Output>()> outputs)
        : bridge_(bridge), outputs_(std::move(outputs)) {}

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override;
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size,
                                                     Interpolation interpolation) override;

    /// Whether KWin answers this program.
    [[nodiscard]] bool isAllowed();

private:
    /// A window's pixels, without its shadow, and how many a point has.
    struct Shot {
        Bitmap bitmap;
        double scale = 1;
        std::chrono::steady_clock::time_point taken;
    };

    [[nodiscard]] const Shot* shotOf(const Window& window);
    [[nodiscard]] std::optional<Shot> capture(const std::string& window);
    [[nodiscard]] std::optional<Bitmap> compose(const Rect& area, double scale);
    [[nodiscard]] double scaleAt(const Rect& area) const;

    Bridge& bridge_;
    std::function<std::vector<Output>()> outputs_;
    std::map<std::string, Shot> shots_; ///< by the windows' ids
    std::optional<bool> allowed_;
    std::chrono::steady_clock::time_point askedAt_;
};

} // namespace lumetry::kwin
