#pragma once

#include "platform/screen_capture.h"
#include "platform/window_server.h"
#include "stopwatch.h"

#include <utility>

namespace lumetry {

/// Another screen capture, with a watch on it.
class TimedScreenCapture final : public ScreenCapture {
public:
    explicit TimedScreenCapture(ScreenCapture& inner) : inner_(inner) {}

    [[nodiscard]] const Stopwatch& watch() const { return watch_; }

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override {
        const Stopwatch::Lap lap(watch_);
        return inner_.captureBelow(area, windowNumber);
    }
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size,
                                                     Interpolation interpolation) override {
        const Stopwatch::Lap lap(watch_);
        return inner_.captureBelow(area, windowNumber, size, interpolation);
    }

private:
    ScreenCapture& inner_;
    Stopwatch watch_;
};

/// Another window server, with a watch on what is asked of it at every sample.
class TimedWindowServer final : public WindowServer {
public:
    explicit TimedWindowServer(WindowServer& inner) : inner_(inner) {}

    [[nodiscard]] const Stopwatch& watch() const { return watch_; }

    [[nodiscard]] std::optional<std::vector<WindowInfo>> onScreenWindows() override {
        const Stopwatch::Lap lap(watch_);
        return inner_.onScreenWindows();
    }
    [[nodiscard]] std::optional<std::uint32_t> activeWindow() override {
        return inner_.activeWindow();
    }
    [[nodiscard]] std::optional<std::string> windowName(std::uint32_t number) override {
        return inner_.windowName(number);
    }
    [[nodiscard]] std::vector<Screen> screens() override {
        const Stopwatch::Lap lap(watch_);
        return inner_.screens();
    }
    [[nodiscard]] std::optional<Screen> mainScreen() override { return inner_.mainScreen(); }
    [[nodiscard]] bool preflightScreenCaptureAccess() override {
        const Stopwatch::Lap lap(watch_);
        return inner_.preflightScreenCaptureAccess();
    }
    bool requestScreenCaptureAccess() override { return inner_.requestScreenCaptureAccess(); }
    void getShareableContent(std::function<void()> completion) override {
        inner_.getShareableContent(std::move(completion));
    }

private:
    WindowServer& inner_;
    Stopwatch watch_;
};

} // namespace lumetry
