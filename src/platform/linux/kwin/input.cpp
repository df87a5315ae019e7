#include "platform/linux/kwin/input.h"

#include <algorithm>
#include <utility>

namespace lumetry::kwin {
namespace {

/// As Qt counts keys and modifiers.
constexpr int escape = 0x01000000;
constexpr int pinShortcut = 0x04000000 | 0x02000000 | 0x41; // Control-Shift-A

} // namespace

KWinInput::KWinInput(Bridge& bridge, GlobalShortcuts& shortcuts,
                     std::function<std::vector<Output>()> outputs)
    : bridge_(bridge), shortcuts_(shortcuts), outputs_(std::move(outputs)),
      pointerEvents_(bridge.onPointer([this] { dispatch({EventType::mouseMoved}); })) {}

Point KWinInput::location() {
    const auto at = bridge_.pointer().value_or(Point());
    const auto outputs = outputs_();
    if (outputs.empty()) {
        return at;
    }
    const Rect& primary = outputs.front().frame;
    return {at.x - primary.x, primary.maxY() - at.y};
}

Token KWinInput::addGlobalMonitorForEvents(EventMask mask,
                                           std::function<void(const Event&)> handler) {
    auto monitor = std::make_shared<Monitor>();
    monitor->mask = mask;
    monitor->handler = std::move(handler);
    monitor->sources.push_back(bridge_.use());
    if ((mask & eventMask(EventType::keyDown)) != 0) {
        monitor->sources.push_back(shortcuts_.take("leave", "Leave inspect mode", escape, [this] {
            dispatch({EventType::keyDown, keyCodeEscape});
        }));
    }
    if ((mask & eventMask(EventType::flagsChanged)) != 0) {
        monitor->sources.push_back(shortcuts_.take("pin", "Measure from the element outlined",
                                                   pinShortcut, [this] { togglePin(); }));
    }
    monitors_.push_back(monitor);
    return Token(lifetime_.guard([this, monitor = std::weak_ptr(monitor)] {
        std::erase(monitors_, monitor.lock());
        if (monitors_.empty()) {
            pinned_ = false;
        }
    }));
}

void KWinInput::dispatch(const Event& event) {
    const auto monitors = monitors_;
    for (const auto& monitor : monitors) {
        const bool stillThere = std::ranges::find(monitors_, monitor) != monitors_.end();
        if (stillThere && (monitor->mask & eventMask(event.type)) != 0) {
            monitor->handler(event);
        }
    }
}

void KWinInput::togglePin() {
    pinned_ = !pinned_;
    dispatch({EventType::flagsChanged});
}

} // namespace lumetry::kwin
