#pragma once

#include "base/geometry.h"
#include "rig/wayland_connection.h"

#include <chrono>
#include <cstdint>
#include <set>
#include <string>

struct org_kde_kwin_fake_input;

namespace lumetry::desktop {

/// Mouse and keyboard of a desktop under KWin, as if a hand moved them. Coordinates are points of
/// the whole desktop, y downwards. Each method returns once the compositor has carried it out. Keys
/// and buttons still held are let go when the object is destroyed.
class WaylandInput {
public:
    /// Throws std::runtime_error when the compositor does not let this program have input devices.
    explicit WaylandInput(const std::string& socket);
    ~WaylandInput();
    WaylandInput(const WaylandInput&) = delete;
    WaylandInput& operator=(const WaylandInput&) = delete;

    /// There in one jump.
    void movePointer(Point place);
    /// There in a straight line from where it was moved to last, in that many steps.
    void glidePointer(Point place, int steps = 8,
                      std::chrono::milliseconds pause = std::chrono::milliseconds(12));

    /// @{ @param button as in linux/input-event-codes.h, such as BTN_LEFT
    void pressButton(std::uint32_t button);
    void releaseButton(std::uint32_t button);
    /// @}
    /// Press and release of the left button.
    void click();
    /// @param amount in points; positive scrolls down
    void scroll(double amount);

    /// @{ @param key as in linux/input-event-codes.h, such as KEY_LEFTALT
    void pressKey(std::uint32_t key);
    void releaseKey(std::uint32_t key);
    void typeKey(std::uint32_t key);
    /// @}

private:
    WaylandConnection connection_;
    org_kde_kwin_fake_input* device_;
    Point pointer_;
    std::set<std::uint32_t> heldButtons_;
    std::set<std::uint32_t> heldKeys_;
};

} // namespace lumetry::desktop
