#pragma once

#include "platform/display_list.h"
#include "platform/overlay_window.h"
#include "platform/screen_lock.h"
#include "platform/window_server.h"
#include "support/printing/printing.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {

class FakeWindowServer final : public WindowServer {
public:
    [[nodiscard]] std::optional<std::vector<WindowInfo>> onScreenWindows() override {
        return windows;
    }
    [[nodiscard]] std::optional<std::uint32_t> activeWindow() override { return active; }
    [[nodiscard]] std::optional<std::string> windowName(std::uint32_t number) override {
        const auto name = names.find(number);
        return name != names.end() ? std::optional(name->second) : std::nullopt;
    }
    [[nodiscard]] std::vector<Screen> screens() override { return allScreens; }
    [[nodiscard]] std::optional<Screen> mainScreen() override { return main; }
    [[nodiscard]] bool preflightScreenCaptureAccess() override { return captureAllowed; }
    bool requestScreenCaptureAccess() override {
        ++captureRequests;
        return captureAllowed;
    }
    void getShareableContent(std::function<void()> completion) override {
        shareableContentRequests.push_back(std::move(completion));
    }

    std::optional<std::vector<WindowInfo>> windows = std::vector<WindowInfo>();
    std::optional<std::uint32_t> active;
    std::map<std::uint32_t, std::string> names; ///< by the windows' numbers
    std::vector<Screen> allScreens;
    std::optional<Screen> main;
    bool captureAllowed = true;
    int captureRequests = 0;
    std::vector<std::function<void()>> shareableContentRequests; ///< their completions
};

class FakeScreenLock final : public ScreenLock {
public:
    [[nodiscard]] bool isLocked() override { return locked; }
    [[nodiscard]] Token onChange(std::function<void()> handler) override {
        handler_ = std::move(handler);
        return Token([this] { handler_ = nullptr; });
    }
    [[nodiscard]] bool isWatched() const { return static_cast<bool>(handler_); }
    void change(bool nowLocked) {
        locked = nowLocked;
        handler_();
    }

    bool locked = false;

private:
    std::function<void()> handler_;
};

/// Text of 7 points a code point, 3 points higher than its font.
class FixedTextMetrics final : public TextMetrics {
public:
    [[nodiscard]] Size measure(std::string_view text, const Font& font) const override;
};

/// What became of one overlay window.
struct OverlayWindowRecord {
    std::uint32_t number = 0; ///< in the window list
    Rect frame;               ///< screen space
    OverlayWindowStyle style;
    ContentView* view = nullptr;
    bool shown = false;
    bool alive = true;
    int needsDisplay = 0; ///< how often it was asked to draw
};

class FakeOverlayWindows final : public OverlayWindows {
public:
    [[nodiscard]] std::unique_ptr<OverlayWindow>
    makeWindow(const Rect& contentRect, const OverlayWindowStyle& style) override;

    std::vector<std::shared_ptr<OverlayWindowRecord>> made; ///< the dead ones too
};

} // namespace lumetry
