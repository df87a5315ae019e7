#include "base/number_text.h"
#include "base/text.h"
#include "platform/accessibility.h"
#include "platform/input.h"
#include "platform/run_loop.h"
#include "platform/screen_lock.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"
#include "session/overlay.h"

#include <string>
#include <utility>

namespace lumetry {
namespace {

/// Width and height without their fractions, or "-" for none.
std::string truncatedSize(const std::optional<Rect>& rect) {
    return rect ? std::to_string(integerValue(rect->width)) + "x" +
                      std::to_string(integerValue(rect->height))
                : "-";
}

} // namespace

void Overlay::update() {
    if (platform_.screenLock.isLocked()) {
        return;
    }
    constexpr double samplingIntervalSeconds = 0.025;
    const double now = platform_.runLoop.now();
    if (now - lastSample_ < samplingIntervalSeconds) {
        return;
    }
    lastSample_ = now;

    const Token kept = platform_.accessibility.keepReplies();
    const Point pointer = platform_.pointer.location();
    const Point at = flipped(pointer, primaryDisplayHeight(platform_.windowServer));
    const PointerSample sample = {now, at, topWindowInfo(platform_, state_, at)};

    if ((platform_.pointer.modifierFlags() & modifierOption) == 0) {
        pinnedFrame_.reset();
        view_.measureA.reset();
        view_.measureB.reset();
    } else if (const auto pinned = pinnedRect(sample)) {
        measure(*pinned, sample);
        return;
    }
    HoverOutcome outcome = inspector_.look(sample, window_->windowNumber());
    if (detectLog_.on()) {
        log(outcome, sample);
    }
    inspector_.addLiveColor(outcome, sample, window_->windowNumber());
    handOver(std::move(outcome), pointer);
}

std::optional<Rect> Overlay::pinnedRect(const PointerSample& sample) {
    if (!pinnedFrame_) {
        pinnedFrame_ = inspector_.lastHoveredFrame();
    }
    if (!pinnedFrame_) {
        const auto element = axElementAt(platform_, state_, sample.at, sample.window);
        pinnedFrame_ = element ? axFrame(*element) : std::nullopt;
    }
    return pinnedFrame_;
}

void Overlay::measure(const Rect& pinned, const PointerSample& sample) {
    view_.measureA = inView(pinned);
    const auto element = axElementAt(platform_, state_, sample.at, sample.window);
    const auto frame = element ? axFrame(*element) : std::nullopt;
    view_.measureB = frame ? std::optional(inView(*frame)) : std::nullopt;
    view_.targetRect = Rect();
    view_.header.clear();
    view_.rows.clear();
    window_->setNeedsDisplay();
}

void Overlay::log(const HoverOutcome& outcome, const PointerSample& sample) {
    const auto& window = sample.window;
    const std::string app = window ? bundleID(platform_.applications, window->pid) : "(none)";
    const bool electron = window && isElectronApp(platform_, state_, window->pid);
    const std::string path(outcome.path);
    std::string key = app;
    key.append("|").append(path).append("|").append(outcome.header);
    if (key == detectLog_.lastKey) {
        return;
    }
    detectLog_.lastKey = std::move(key);
    const auto bounds = window ? std::optional(window->bounds) : std::nullopt;
    detectLog_.append(
        "app=" + onOneLine(app) + " electron=" + (electron ? "true" : "false") + " path=" + path +
        " header=" + (outcome.header.empty() ? "-" : onOneLine(outcome.header)) +
        " box=" + truncatedSize(outcome.box) + " win=" + truncatedSize(bounds) + "\n");
}

void Overlay::handOver(HoverOutcome outcome, Point pointer) {
    view_.targetRect = outcome.box ? inView(*outcome.box) : Rect();
    view_.header = std::move(outcome.header);
    view_.rows = std::move(outcome.rows);
    const Point origin = window_->frame().origin();
    view_.cursorPoint = {pointer.x - origin.x, pointer.y - origin.y};
    window_->setNeedsDisplay();
}

Rect Overlay::inView(const Rect& accessibilityRect) const {
    const Point origin = window_->frame().origin();
    const Rect onScreen = flipped(accessibilityRect, primaryDisplayHeight(platform_.windowServer));
    return {onScreen.x - origin.x, onScreen.y - origin.y, onScreen.width, onScreen.height};
}

} // namespace lumetry
