#pragma once

#include "rig/x_connection.h"

#include <xcb/xproto.h>

#include <chrono>
#include <cstdint>
#include <set>

namespace lumetry::desktop {

enum class MouseButton : std::uint8_t {
    left = 1,
    middle = 2,
    right = 3,
    wheelUp = 4,
    wheelDown = 5,
};

/// Mouse and keyboard of a private desktop, as if a hand moved them (through XTEST, so that raw
/// events are raised too). Coordinates are pixels of the root window, origin at the top-left. Each
/// method returns once the server has carried it out. Keys and buttons still held are let go when
/// the object is destroyed.
class InputDevice {
public:
    /// Throws std::runtime_error when the server lacks XTEST.
    explicit InputDevice(const XConnection& server);
    ~InputDevice();
    InputDevice(const InputDevice&) = delete;
    InputDevice& operator=(const InputDevice&) = delete;

    struct Position {
        int x = 0;
        int y = 0;

        friend bool operator==(const Position&, const Position&) = default;
    };
    [[nodiscard]] Position pointer() const;

    /// There in one jump: one motion event.
    void movePointer(int x, int y);
    /// There in a straight line from where it is, in that many motion events.
    void glidePointer(int x, int y, int steps = 8,
                      std::chrono::milliseconds pause = std::chrono::milliseconds(12));

    void pressButton(MouseButton button);
    void releaseButton(MouseButton button);
    /// Press and release; on a wheel button it is one notch.
    void click(MouseButton button = MouseButton::left);

    /// @param keysym as in X11/keysymdef.h, such as XK_Alt_L; throws std::runtime_error when no key
    /// of the keyboard gives it without a modifier
    void pressKey(xcb_keysym_t keysym);
    void releaseKey(xcb_keysym_t keysym);
    void typeKey(xcb_keysym_t keysym);

private:
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0) const;
    [[nodiscard]] xcb_keycode_t keyFor(xcb_keysym_t keysym) const;

    const XConnection& server_;
    std::set<std::uint8_t> heldButtons_;
    std::set<xcb_keycode_t> heldKeys_;
};

} // namespace lumetry::desktop
