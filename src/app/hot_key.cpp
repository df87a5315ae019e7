#include "app/hot_key.h"

#include <utility>

namespace lumetry {
namespace {

constexpr std::uint32_t signature = 0x4C554D54; ///< "LUMT"

} // namespace

HotKey::HotKey(HotKeys& hotKeys, std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id,
               std::function<void()> action)
    : action_(std::move(action)), identifier_(id) {
    registry()[id] = this;
    handlerRef_ = hotKeys.installEventHandler(handleEvent);
    hotKeyRef_ = hotKeys.registerEventHotKey(keyCode, modifiers, {signature, id});
}

HotKey::~HotKey() {
    hotKeyRef_.reset();
    handlerRef_.reset();
    const auto found = registry().find(identifier_);
    if (found != registry().end() && found->second == this) {
        registry().erase(found);
    }
}

std::map<std::uint32_t, HotKey*>& HotKey::registry() {
    static std::map<std::uint32_t, HotKey*> registry;
    return registry;
}

EventStatus HotKey::handleEvent(const HotKeyEvent* event) {
    if (event == nullptr) {
        return eventNotHandledErr;
    }
    const auto found = registry().find(event->directObject.id);
    if (found != registry().end()) {
        // The action may destroy the hot key.
        const auto action = found->second->action_;
        action();
    }
    return noErr;
}

} // namespace lumetry
