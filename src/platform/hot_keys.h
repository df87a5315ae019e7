#pragma once

#include "base/token.h"

#include <cstdint>
#include <functional>

namespace lumetry {

/// Says which hot key was pressed (EventHotKeyID).
struct HotKeyID {
    std::uint32_t signature = 0; ///< a four-character code
    std::uint32_t id = 0;

    friend bool operator==(const HotKeyID&, const HotKeyID&) = default;
};

/// Modifier keys of a hot key, as bits (Events.h; not those of ModifierFlags).
inline constexpr std::uint32_t hotKeyShift = 0x0200;
inline constexpr std::uint32_t hotKeyControl = 0x1000;

/// What a handler makes of an event (OSStatus).
using EventStatus = std::int32_t;
inline constexpr EventStatus noErr = 0;
inline constexpr EventStatus eventNotHandledErr = -9874;

/// A press of a hot key (kEventHotKeyPressed); its direct object is the key's identifier.
struct HotKeyEvent {
    HotKeyID directObject;
};

/// Shortcuts that reach the program whichever application is in front.
class HotKeys {
public:
    using Handler = std::function<EventStatus(const HotKeyEvent* event)>;

    HotKeys() = default;
    HotKeys(const HotKeys&) = delete;
    HotKeys& operator=(const HotKeys&) = delete;
    virtual ~HotKeys() = default;

    /// Calls the handler on the main thread for every press of a registered hot key, the latest
    /// handler first, until one of them answers noErr (InstallEventHandler). It lasts as long as
    /// the token.
    [[nodiscard]] virtual Token installEventHandler(Handler handler) = 0;
    /// Takes a key for the program for as long as the token lives (RegisterEventHotKey). While
    /// another program holds it presses do not arrive; they do once that program lets go of it.
    /// @param keyCode of the platform's virtual keys
    /// @param modifiers exactly those that must be down; locks do not matter
    [[nodiscard]] virtual Token registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    HotKeyID id) = 0;
};

} // namespace lumetry
