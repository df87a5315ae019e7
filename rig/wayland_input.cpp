#include "rig/wayland_input.h"

#include <fake-input-client-protocol.h>

#include <linux/input-event-codes.h>

#include <thread>

namespace lumetry::desktop {
namespace {

constexpr std::uint32_t versionWithKeys = 4;
constexpr std::uint32_t pressed = 1;
constexpr std::uint32_t released = 0;

} // namespace

WaylandInput::WaylandInput(const std::string& socket)
    : connection_(socket), device_(connection_.bindOne<org_kde_kwin_fake_input>(
                               org_kde_kwin_fake_input_interface, versionWithKeys)) {
    org_kde_kwin_fake_input_authenticate(device_, "Lumetry", "tests move the pointer");
    connection_.sync();
}

WaylandInput::~WaylandInput() {
    for (const auto button : heldButtons_) {
        org_kde_kwin_fake_input_button(device_, button, released);
    }
    for (const auto key : heldKeys_) {
        org_kde_kwin_fake_input_keyboard_key(device_, key, released);
    }
    wl_display_flush(connection_.display());
    org_kde_kwin_fake_input_destroy(device_);
}

void WaylandInput::movePointer(Point place) {
    pointer_ = place;
    org_kde_kwin_fake_input_pointer_motion_absolute(device_, wl_fixed_from_double(place.x),
                                                    wl_fixed_from_double(place.y));
    connection_.sync();
}

void WaylandInput::glidePointer(Point place, int steps, std::chrono::milliseconds pause) {
    const Point start = pointer_;
    for (int step = 1; step <= steps; ++step) {
        const double part = static_cast<double>(step) / steps;
        movePointer({start.x + (place.x - start.x) * part, start.y + (place.y - start.y) * part});
        std::this_thread::sleep_for(pause);
    }
}

void WaylandInput::pressButton(std::uint32_t button) {
    org_kde_kwin_fake_input_button(device_, button, pressed);
    heldButtons_.insert(button);
    connection_.sync();
}

void WaylandInput::releaseButton(std::uint32_t button) {
    org_kde_kwin_fake_input_button(device_, button, released);
    heldButtons_.erase(button);
    connection_.sync();
}

void WaylandInput::click() {
    pressButton(BTN_LEFT);
    releaseButton(BTN_LEFT);
}

void WaylandInput::scroll(double amount) {
    org_kde_kwin_fake_input_axis(device_, WL_POINTER_AXIS_VERTICAL_SCROLL,
                                 wl_fixed_from_double(amount));
    connection_.sync();
}

void WaylandInput::pressKey(std::uint32_t key) {
    org_kde_kwin_fake_input_keyboard_key(device_, key, pressed);
    heldKeys_.insert(key);
    connection_.sync();
}

void WaylandInput::releaseKey(std::uint32_t key) {
    org_kde_kwin_fake_input_keyboard_key(device_, key, released);
    heldKeys_.erase(key);
    connection_.sync();
}

void WaylandInput::typeKey(std::uint32_t key) {
    pressKey(key);
    releaseKey(key);
}

} // namespace lumetry::desktop
