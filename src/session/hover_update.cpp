#include "platform/accessibility.h"
#include "platform/input.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "session/overlay.h"

#include <array>
#include <string_view>
#include <utility>

namespace lumetry {

void Overlay::update() {
    constexpr double samplingIntervalSeconds = 0.025;
    const double now = platform_.runLoop.now();
    if (now - lastSample_ < samplingIntervalSeconds) {
        return;
    }
    lastSample_ = now;

    const Token answers = platform_.accessibility.keepAnswers();
    Sample sample;
    sample.pointer = platform_.pointer.location();
    sample.at = flipped(sample.pointer, primaryDisplayHeight(platform_.windowServer));
    sample.window = topWindowInfo(platform_, state_, sample.at);

    if ((platform_.pointer.modifierFlags() & modifierOption) == 0) {
        pinnedFrame_.reset();
        view_.measureA.reset();
        view_.measureB.reset();
    } else if (const auto pinned = pinnedRect(sample)) {
        measure(*pinned, sample);
        return;
    }
    show(hover(sample), sample);
}

std::optional<Rect> Overlay::pinnedRect(const Sample& sample) {
    if (!pinnedFrame_) {
        pinnedFrame_ = lastHoveredFrame_;
    }
    if (!pinnedFrame_) {
        const auto element = elementAt(sample);
        pinnedFrame_ = element ? axFrame(*element) : std::nullopt;
    }
    return pinnedFrame_;
}

void Overlay::measure(const Rect& pinned, const Sample& sample) {
    view_.measureA = inView(pinned);
    const auto element = elementAt(sample);
    const auto frame = element ? axFrame(*element) : std::nullopt;
    view_.measureB = frame ? std::optional(inView(*frame)) : std::nullopt;
    view_.targetRect = Rect();
    view_.header.clear();
    view_.rows.clear();
    window_->setNeedsDisplay();
}

Overlay::Outcome Overlay::hover(const Sample& sample) {
    const auto element = elementAt(sample);
    if (!element) {
        return nothingAt(sample);
    }
    constexpr std::array<std::string_view, 3> resolving = {"AXRole", "AXPosition", "AXSize"};
    platform_.accessibility.prefetch({&*element, 1}, resolving);
    const ResolvedComponent resolved = resolveComponent(*element);
    auto frame = axFrame(resolved.component);
    if (!frame) {
        frame = axFrame(*element);
    }
    return frame ? readout(resolved, *frame) : Outcome();
}

Overlay::Outcome Overlay::nothingAt(const Sample& sample) {
    lastHoveredFrame_.reset();
    cachedComponent_.reset();
    return {sample.window ? "" : "color", {}, std::nullopt};
}

Overlay::Outcome Overlay::readout(const ResolvedComponent& resolved, const Rect& frame) {
    lastHoveredFrame_ = frame;
    if (cachedComponent_ != resolved.component || cachedFrame_ != frame) {
        Glance glance = deriveGlance(platform_, resolved, frame);
        cachedComponent_ = resolved.component;
        cachedFrame_ = frame;
        cachedHeader_ = std::move(glance.header);
        cachedRows_ = std::move(glance.rows);
    }
    return {cachedHeader_, cachedRows_, frame};
}

void Overlay::show(Outcome outcome, const Sample& sample) {
    view_.targetRect = outcome.box ? inView(*outcome.box) : Rect();
    view_.header = std::move(outcome.header);
    view_.rows = std::move(outcome.rows);
    const Point origin = window_->frame().origin();
    view_.cursorPoint = {sample.pointer.x - origin.x, sample.pointer.y - origin.y};
    window_->setNeedsDisplay();
}

std::optional<AXUIElement> Overlay::elementAt(const Sample& sample) {
    return axElementAt(platform_, state_, sample.at, sample.window);
}

Rect Overlay::inView(const Rect& accessibilityRect) const {
    const Point origin = window_->frame().origin();
    const Rect onScreen = flipped(accessibilityRect, primaryDisplayHeight(platform_.windowServer));
    return {onScreen.x - origin.x, onScreen.y - origin.y, onScreen.width, onScreen.height};
}

} // namespace lumetry
