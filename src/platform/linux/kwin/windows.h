#pragma once

#include "platform/linux/kwin/bridge.h"
#include "platform/linux/windows/desktop_windows.h"
#include "platform/window_server.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::kwin {

/// Where an output lies, in KWin's coordinates.
struct Output {
    Rect frame;
    double scale = 1; ///< device pixels for each point

    friend bool operator==(const Output&, const Output&) = default;
};

/// Answers what the program asks of the windows and screens.
class KWinWindows final : public WindowServer, public DesktopWindows {
public:
    /// @param outputs says which there are, the primary one first
    KWinWindows(Bridge& bridge, std::function<std::vector<Output>()> outputs,
                std::function<bool()> mayCapture, std::function<bool()> grantCapture,
                RunLoop& runLoop);

    [[nodiscard]] std::optional<std::vector<WindowInfo>> onScreenWindows() override;
    [[nodiscard]] std::optional<std::uint32_t> activeWindow() override;
    [[nodiscard]] std::optional<std::string> windowName(std::uint32_t number) override;
    [[nodiscard]] std::vector<Screen> screens() override;
    [[nodiscard]] std::optional<Screen> mainScreen() override;
    [[nodiscard]] bool preflightScreenCaptureAccess() override { return mayCapture_(); }
    bool requestScreenCaptureAccess() override { return grantCapture_(); }
    void getShareableContent(std::function<void()> completion) override {
        runLoop_.async(std::move(completion));
    }

    [[nodiscard]] RootSpace rootSpace() override;
    [[nodiscard]] std::optional<DesktopWindow> windowAt(Point point,
                                                        std::optional<pid_t> pid) override;
    [[nodiscard]] ProcessWindows windowsOf(pid_t pid) override;
    [[nodiscard]] bool placesAreInWindows() const override { return true; }

private:
    [[nodiscard]] const std::vector<Window>& shown();
    [[nodiscard]] double scaleOf(const Window& window) const;
    [[nodiscard]] bool isOwn(const Window& window) const { return window.pid == ownPid_; }

    Bridge& bridge_;
    std::function<std::vector<Output>()> outputs_;
    std::function<bool()> mayCapture_;
    std::function<bool()> grantCapture_;
    RunLoop& runLoop_;
    pid_t ownPid_;
};

} // namespace lumetry::kwin
