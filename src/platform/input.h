#pragma once

#include "base/geometry.h"
#include "base/token.h"

#include <cstdint>
#include <functional>

namespace lumetry {

/// Modifier keys that are down, as bits (NSEventModifierFlags).
using ModifierFlags = std::uint32_t;
inline constexpr ModifierFlags modifierShift = 1U << 17;
inline constexpr ModifierFlags modifierControl = 1U << 18;
inline constexpr ModifierFlags modifierOption = 1U << 19;
inline constexpr ModifierFlags modifierCommand = 1U << 20;

/// The pointer and the modifier keys at this moment.
class Pointer {
public:
    Pointer() = default;
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;
    virtual ~Pointer() = default;

    /// Where the pointer is, in screen space (NSEvent.mouseLocation).
    [[nodiscard]] virtual Point location() = 0;
    /// Which modifier keys are down (NSEvent.modifierFlags).
    [[nodiscard]] virtual ModifierFlags modifierFlags() = 0;
};

/// The numbers are the platform's event types; a mask has bit n set for type n.
enum class EventType : std::uint8_t {
    mouseMoved = 5,
    keyDown = 10,
    flagsChanged = 12,
    scrollWheel = 22,
};

using EventMask = std::uint32_t;
[[nodiscard]] constexpr EventMask eventMask(EventType type) {
    return EventMask{1} << static_cast<unsigned>(type);
}

/// Key codes of the platform (virtual key codes, independent of the keyboard layout).
inline constexpr std::uint16_t keyCodeEscape = 53;
inline constexpr std::uint16_t keyCodeM = 46;
/// The code of every key that the platform has no code for.
inline constexpr std::uint16_t keyCodeUnknown = 0xFFFF;

struct Event {
    EventType type = EventType::mouseMoved;
    std::uint16_t keyCode = keyCodeUnknown; ///< of key events
    ModifierFlags modifierFlags = 0;        ///< after the event; only local monitors are told

    friend bool operator==(const Event&, const Event&) = default;
};

/// Watches input on its way to other applications, without holding it up.
class EventMonitors {
public:
    EventMonitors() = default;
    EventMonitors(const EventMonitors&) = delete;
    EventMonitors& operator=(const EventMonitors&) = delete;
    virtual ~EventMonitors() = default;

    /// Calls the handler on the main thread for every event of the mask that is addressed to
    /// another application (NSEvent.addGlobalMonitorForEvents). The monitor lasts as long as the
    /// token; an empty token means that the platform refused.
    [[nodiscard]] virtual Token
    addGlobalMonitorForEvents(EventMask mask, std::function<void(const Event&)> handler) = 0;
};

} // namespace lumetry
