#pragma once

#include "base/token.h"
#include "platform/hot_keys.h"

#include <cstdint>
#include <functional>
#include <map>

namespace lumetry {

/// One shortcut that calls an action whichever application is in front. While another program holds
/// it, presses do not arrive.
class HotKey {
public:
    /// Registers at once.
    /// @param keyCode of the platform's virtual keys
    /// @param modifiers hotKeyShift and the like
    /// @param id takes the place of an earlier hot key of that identifier
    HotKey(HotKeys& hotKeys, std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id,
           std::function<void()> action);
    ~HotKey();
    HotKey(const HotKey&) = delete;
    HotKey& operator=(const HotKey&) = delete;

    /// Calls the action of the hot key that was pressed. Any instance's handler serves them all.
    static EventStatus handleEvent(const HotKeyEvent* event);

private:
    /// Finds the instances again by their identifiers.
    static std::map<std::uint32_t, HotKey*>& registry();

    Token hotKeyRef_;
    Token handlerRef_;
    std::function<void()> action_;
    std::uint32_t identifier_;
};

} // namespace lumetry
