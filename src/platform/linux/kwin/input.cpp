#include "platform/linux/kwin/input.h"

#include <unistd.h>

#include <memory>
#include <utility>

namespace lumetry::kwin {
namespace {

/// As Qt counts keys and modifiers.
constexpr int escape = 0x01000000;
constexpr int pinShortcut = 0x04000000 | 0x02000000 | 0x41; // Control-Shift-A

} // namespace

KWinInput::KWinInput(Bridge& bridge, GlobalShortcuts& shortcuts, ModifierSource modifiers,
                     std::function<std::vector<Output>()> outputs)
    : bridge_(bridge), shortcuts_(shortcuts), modifiers_(std::move(modifiers)),
      outputs_(std::move(outputs)), pointerEvents_(bridge.onPointer([this] { pointerMoved(); })) {}

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
    if (!monitors_.isEmpty() && !isOverOwnWindow()) {
        monitors_.call({EventType::mouseMoved});
    }
}

/// The overlay, which no task bar shows, does not count.
bool KWinInput::isOverOwnWindow() {
    const auto at = bridge_.pointer();
    const auto& windows = bridge_.windows();
    if (!at || !windows) {
        return false;
    }
    for (const Window& window : *windows) {
        const bool isOwn = window.pid == getpid();
        if (window.frame.contains(*at) && (!isOwn || window.inTaskBar)) {
            return isOwn;
        }
    }
    return false;
}

} // namespace lumetry::kwin
