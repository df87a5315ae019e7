#include "platform/linux/kwin/input.h"

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace lumetry::kwin {
namespace {

/// As Qt counts keys and modifiers.
constexpr int escape = 0x01000000;
constexpr int pinShortcut = 0x04000000 | 0x02000000 | 0x41; // Control-Shift-A

/// How long a look at what draws is put off, in seconds, so that it sees all that was drawn at
/// once.
constexpr double shortly = 0.1;
/// The same of what has drawn for longer than scrolling takes: a film, or a spinner.
constexpr double nowAndThen = 0.5;
constexpr double longestScrolling = 2;
/// For how long after it has told of drawing the script may keep more of it to itself.
constexpr double untold = 0.075;

} // namespace

KWinInput::KWinInput(Bridge& bridge, GlobalShortcuts& shortcuts, ModifierSource modifiers,
                     std::function<std::vector<Output>()> outputs, RunLoop& runLoop)
    : bridge_(bridge), shortcuts_(shortcuts), modifiers_(std::move(modifiers)),
      outputs_(std::move(outputs)), runLoop_(runLoop),
      pointerEvents_(bridge.onPointer([this] { pointerMoved(); })),
      damages_(bridge.onDamage([this](const std::string& window) { windowHasDrawn(window); })) {}

Point KWinInput::location() {
    const auto at = bridge_.pointer().value_or(Point());
    const auto outputs = outputs_();
    if (outputs.empty()) {
        return at;
    }
    const Rect& primary = outputs.front().frame;
    return {at.x - primary.x, primary.maxY() - at.y};
}

ModifierFlags KWinInput::modifierFlags() {
    return modifiers_.isThere() ? modifiers_.down() : pinned_ ? modifierOption : 0;
}

Token KWinInput::addGlobalMonitorForEvents(EventMask mask,
                                           std::function<void(const Event&)> handler) {
    auto sources = std::make_shared<std::vector<Token>>();
    sources->push_back(monitors_.add([mask, handler = std::move(handler)](const Event& event) {
        if ((mask & eventMask(event.type)) != 0) {
            handler(event);
        }
    }));
    sources->push_back(bridge_.use());
    if ((mask & eventMask(EventType::keyDown)) != 0) {
        sources->push_back(shortcuts_.take("leave", "Leave inspect mode", escape, [this] {
            monitors_.call({EventType::keyDown, keyCodeEscape});
        }));
    }
    if ((mask & eventMask(EventType::flagsChanged)) != 0) {
        sources->push_back(watchModifiers());
    }
    return Token([sources] { sources->clear(); });
}

Token KWinInput::watchModifiers() {
    const auto changed = [this] { monitors_.call({EventType::flagsChanged}); };
    if (modifiers_.isThere()) {
        return modifiers_.watch(changed);
    }
    pinned_ = false;
    return shortcuts_.take("pin", "Measure from the element outlined", pinShortcut,
                           [this, changed] {
                               pinned_ = !pinned_;
                               changed();
                           });
}

void KWinInput::pointerMoved() {
    if (monitors_.isEmpty()) {
        return;
    }
    const Window* const window = windowUnderPointer();
    if (window == nullptr || window->pid != getpid()) {
        monitors_.call({EventType::mouseMoved});
    }
}

void KWinInput::windowHasDrawn(const std::string& windowId) {
    const Window* const window = monitors_.isEmpty() ? nullptr : windowUnderPointer();
    if (window == nullptr || window->id != windowId) {
        return;
    }
    const double now = runLoop_.now();
    if (now - lastDrawn_ > nowAndThen || drawing_ != windowId) {
        drawsSince_ = now;
        drawing_ = windowId;
    }
    lastDrawn_ = now;
    if (!looksAgain_) {
        lookLater();
    }
}

void KWinInput::lookLater() {
    looksAgain_ = true;
    const bool isScrolling = runLoop_.now() - drawsSince_ < longestScrolling;
    runLoop_.after(isScrolling ? shortly : nowAndThen, lifetime_.guard([this] {
        looksAgain_ = false;
        const bool mayDrawUntold = runLoop_.now() - lastDrawn_ < untold;
        monitors_.call({EventType::scrollWheel});
        if (mayDrawUntold && !looksAgain_) {
            lookLater();
        }
    }));
}

/// Null when it is not known. Own windows that no task bar shows do not count.
const Window* KWinInput::windowUnderPointer() {
    // This comes up in the middle of a report's way in: no other one is waited for.
    const auto& windows = bridge_.knownWindows();
    const auto& at = bridge_.knownPointer();
    if (!windows || !at) {
        return nullptr;
    }
    const auto found = std::ranges::find_if(*windows, [&at](const Window& window) {
        return window.frame.contains(*at) && (window.pid != getpid() || window.inTaskBar);
    });
    return found == windows->end() ? nullptr : &*found;
}

} // namespace lumetry::kwin
