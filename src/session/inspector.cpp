#include "session/inspector.h"

#include "base/color_metrics.h"
#include "pixels/color_sample.h"
#include "pixels/pixel_box.h"
#include "platform/accessibility.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"
#include "probe/role_bucket.h"
#include "session/glance.h"

#include <array>
#include <utility>

namespace lumetry {
namespace {

const GlanceRow needsScreenRecording = {"needs", "Screen Recording", std::nullopt};

/// What is shown of a box found in the pixels.
HoverOutcome pixelOutcome(std::string_view path, const Rect& box) {
    return {path, "≈ element", {sizeRow(box.size())}, box, true};
}

/// Whether the application answered with one frame for its whole window.
bool isCoarse(const Platform& platform, ProbeState& state, const Rect& frame,
              const std::optional<WindowHit>& window) {
    return window && isElectronApp(platform, state, window->pid) &&
           nearlyCovers(frame, window->bounds);
}

} // namespace

HoverOutcome Inspector::look(const PointerSample& sample, std::uint32_t windowNumber) {
    const auto element = axElementAt(platform_, state_, sample.at, sample.window);
    if (!element) {
        return lookAtPixels(sample, windowNumber);
    }
    constexpr std::array<std::string_view, 3> resolving = {"AXRole", "AXPosition", "AXSize"};
    platform_.accessibility.prefetch({&*element, 1}, resolving);
    const ResolvedComponent resolved = resolveComponent(*element);
    auto frame = axFrame(resolved.component);
    if (!frame) {
        frame = axFrame(*element);
    }
    if (!frame) {
        return {"desktop", "", {}, std::nullopt, false};
    }
    std::string_view path = "AX-real";
    if (isCoarse(platform_, state_, *frame, sample.window)) {
        const auto box = boxAround(sample.at, windowNumber);
        if (box && !nearlyCovers(*box, *frame)) {
            cachedPixelBox_ = box;
            cachedComponent_.reset();
            lastHoveredFrame_ = box;
            return pixelOutcome("coarse→pixel", *box);
        }
        path = "AX-coarse-shown";
    }
    HoverOutcome outcome = readout(resolved, *frame, windowNumber);
    outcome.path = path;
    return outcome;
}

HoverOutcome Inspector::lookAtPixels(const PointerSample& sample, std::uint32_t windowNumber) {
    lastHoveredFrame_.reset();
    cachedComponent_.reset();
    if (!sample.window) {
        return {"desktop(win-nil)", "color", {}, std::nullopt, true};
    }
    cachedPixelBox_ = boxAround(sample.at, windowNumber);
    if (cachedPixelBox_) {
        return pixelOutcome("pixel-only(AX-nil)", *cachedPixelBox_);
    }
    if (platform_.windowServer.preflightScreenCaptureAccess()) {
        return {"AX-nil+pixel-nil", "", {}, std::nullopt, false};
    }
    return {"needs-SR", "no screen access", {needsScreenRecording}, std::nullopt, false};
}

HoverOutcome Inspector::readout(const ResolvedComponent& resolved, const Rect& frame,
                                std::uint32_t windowNumber) {
    cachedPixelBox_.reset();
    lastHoveredFrame_ = frame;
    if (cachedComponent_ != resolved.component || cachedFrame_ != frame) {
        Glance glance = deriveGlance(platform_, resolved, frame, windowNumber);
        cachedComponent_ = resolved.component;
        cachedFrame_ = frame;
        cachedHeader_ = std::move(glance.header);
        cachedRows_ = std::move(glance.rows);
        cachedLiveColor_ = glance.liveColor;
    }
    return {"", cachedHeader_, cachedRows_, frame, cachedLiveColor_};
}

std::optional<Rect> Inspector::boxAround(Point at, std::uint32_t windowNumber) {
    if (cachedPixelBox_ && inset(*cachedPixelBox_, 1, 1).contains(at)) {
        return cachedPixelBox_;
    }
    return pixelBox(platform_.screenCapture, windowNumber, at);
}

void Inspector::addLiveColor(HoverOutcome& outcome, const PointerSample& sample,
                             std::uint32_t windowNumber) {
    constexpr double refreshIntervalSeconds = 0.1;
    if (!outcome.liveColor) {
        return;
    }
    if (!lastColor_ || sample.time - lastColorAt_ > refreshIntervalSeconds) {
        lastColor_ = sampleColor(platform_.screenCapture, windowNumber, sample.at);
        lastColorAt_ = sample.time;
    }
    if (lastColor_) {
        outcome.rows.push_back({"pixel", hexString(*lastColor_), lastColor_});
    } else if (!platform_.windowServer.preflightScreenCaptureAccess()) {
        outcome.rows.push_back(needsScreenRecording);
    }
}

void Inspector::forget() {
    cachedComponent_.reset();
    cachedFrame_ = Rect::null();
    cachedPixelBox_.reset();
    lastColor_.reset();
}

} // namespace lumetry
