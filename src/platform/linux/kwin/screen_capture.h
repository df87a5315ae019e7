#pragma once

#include "base/int_geometry.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/linux/kwin/bridge.h"
#include "platform/linux/kwin/window_screenshots.h"
#include "platform/linux/kwin/windows.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/picture_capture.h"
#include "platform/run_loop.h"
#include "platform/screen_capture.h"

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lumetry::kwin {

/// Reads the pixels of windows from KWin, which leaves the overlay out: it captures one window at a
/// time. What was captured is taken again for as long as the window surely looks the same. A window
/// that has changed is captured anew once it is at rest, or when the pointer moves over it, so that
/// there is a picture when it is asked for.
class KWinCapture final : public ScreenCapture {
public:
    KWinCapture(Bridge& bridge, FileDescriptorWatcher& watcher, RunLoop& runLoop,
                std::function<std::vector<Output>()> outputs);

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override;
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size,
                                                     Interpolation interpolation) override;

    /// Whether KWin answers this program.
    [[nodiscard]] bool isAllowed();

private:
    using Clock = std::chrono::steady_clock;

    struct Shot {
        Shot(Screenshot screenshot, Clock::time_point lastWanted);

        PictureCapture picture; ///< in points from the window's top-left corner
        Size windowSize;
        Clock::time_point asked;
        Clock::time_point right;  ///< when the window surely looked like that, as far as is known
        Clock::time_point wanted; ///< when it was last used
    };

    [[nodiscard]] Clock::time_point usableSince(const Window& window) const;
    bool confirm(Shot& shot, const Window& window) const;
    [[nodiscard]] bool isUsable(Shot& shot, const Window& window) const;
    Shot& keep(const Window& window, Screenshot&& screenshot);
    [[nodiscard]] Shot* shotOf(const Window& window, Clock::time_point deadline);
    [[nodiscard]] std::optional<Bitmap> compose(const Rect& area, double scale);
    [[nodiscard]] double scaleAt(const Rect& area) const;
    void pointerMoved();
    void awaitRest(const std::string& windowId);
    void captureAtRest(const std::string& windowId);
    void dropUnused();

    Bridge& bridge_;
    RunLoop& runLoop_;
    std::function<std::vector<Output>()> outputs_;
    WindowScreenshots screenshots_;
    std::map<std::string, Shot> shots_;  ///< by the windows' ids
    std::set<std::string> awaitingRest_; ///< ids of windows that have changed
    bool dropsUnused_ = false;           ///< a task is waiting to
    std::optional<bool> allowed_;
    Clock::time_point askedAt_;
    Token pointerMoves_;
    Token damages_;
    Lifetime lifetime_;
};

} // namespace lumetry::kwin
