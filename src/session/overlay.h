#pragma once

#include "base/geometry.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/overlay_window.h"
#include "platform/platform.h"
#include "probe/probe_state.h"
#include "render/overlay_view.h"
#include "session/detect_log.h"
#include "session/inspector.h"

#include <functional>
#include <memory>
#include <optional>

namespace lumetry {

/// The inspection session: inspect mode on and off, with the window that covers every screen and
/// the monitors that follow the pointer. Made once for the whole run of the program.
class Overlay {
public:
    /// Makes the window and its view; shows nothing.
    Overlay(const Platform& platform, ProbeState& state);
    Overlay(const Overlay&) = delete;
    Overlay& operator=(const Overlay&) = delete;
    ~Overlay() = default;

    /// Turns inspect mode on. Without permission to read other applications it only calls
    /// onNeedsPermissions.
    void start();
    /// Turns inspect mode off; repeats only the clean-up when it is off already.
    void stop();
    /// Whether inspect mode is on.
    [[nodiscard]] bool active() const { return active_; }

    /// Takes one pointer sample: finds what is under the pointer and hands the view what to draw.
    /// Does nothing within 25 ms of the last sample taken, nor while the screen is locked.
    void update();

    /// The frame that covers all screens, in screen space; null without screens.
    [[nodiscard]] static Rect unionFrame(WindowServer& windowServer);

    [[nodiscard]] const OverlayView& view() const { return view_; }

    /// Called when inspect mode cannot start because other applications may not be read.
    std::function<void()> onNeedsPermissions;

private:
    /// Asks for what reading takes, unless the screen is locked.
    void openUp();
    /// Shows the window and follows the pointer, but neither over a locked screen.
    void followLock();
    void show();
    void hide();
    void beginTracking();
    [[nodiscard]] std::optional<Rect> pinnedRect(const PointerSample& sample);
    void measure(const Rect& pinned, const PointerSample& sample);
    void log(const HoverOutcome& outcome, const PointerSample& sample);
    /// @param pointer screen space
    void handOver(HoverOutcome outcome, Point pointer);
    [[nodiscard]] Rect inView(const Rect& accessibilityRect) const;

    const Platform& platform_;
    ProbeState& state_;

    OverlayView view_;
    std::unique_ptr<OverlayWindow> window_;
    Token monitor_;    ///< of pointer, modifier and scroll events
    Token keyMonitor_; ///< of key presses
    Token lockWatch_;  ///< while inspect mode is on
    double lastSample_ = 0;
    std::optional<Rect> pinnedFrame_;
    bool active_ = false;
    Inspector inspector_;
    DetectLog detectLog_;
    Lifetime lifetime_;
};

} // namespace lumetry
