#include "rig/input_device.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <stdexcept>
#include <thread>

namespace lumetry::desktop {

InputDevice::InputDevice(const XConnection& server) : server_(server) {
    const auto* extension = xcb_get_extension_data(server_.get(), &xcb_test_id);
    if (!extension || extension->present == 0) {
        throw std::runtime_error("the X server has no XTEST extension");
    }
}

InputDevice::~InputDevice() {
    for (const auto button : heldButtons_) {
        fake(XCB_BUTTON_RELEASE, button);
    }
    for (const auto key : heldKeys_) {
        fake(XCB_KEY_RELEASE, key);
    }
}

InputDevice::Position InputDevice::pointer() const {
    const auto request = xcb_query_pointer(server_.get(), server_.root());
    const Reply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(server_.get(), request, nullptr));
    if (!reply) {
        throw std::runtime_error("the X server does not say where the pointer is");
    }
    return {reply->root_x, reply->root_y};
}

void InputDevice::movePointer(int x, int y) {
    fake(XCB_MOTION_NOTIFY, 0, x, y);
}

void InputDevice::glidePointer(int x, int y, int steps, std::chrono::milliseconds pause) {
    constexpr auto settling = std::chrono::milliseconds(50);
    const auto from = pointer();
    for (int step = 1; step <= steps; ++step) {
        const double part = static_cast<double>(step) / steps;
        if (step == steps) {
            // Programs that take samples now and then shall not miss where it came to rest.
            std::this_thread::sleep_for(settling);
        }
        movePointer(static_cast<int>(std::lround(from.x + (x - from.x) * part)),
                    static_cast<int>(std::lround(from.y + (y - from.y) * part)));
        std::this_thread::sleep_for(pause);
    }
}

void InputDevice::pressButton(MouseButton button) {
    heldButtons_.insert(static_cast<std::uint8_t>(button));
    fake(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
}

void InputDevice::releaseButton(MouseButton button) {
    heldButtons_.erase(static_cast<std::uint8_t>(button));
    fake(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
}

void InputDevice::click(MouseButton button) {
    pressButton(button);
    releaseButton(button);
}

void InputDevice::pressKey(xcb_keysym_t keysym) {
    const auto key = keyFor(keysym);
    heldKeys_.insert(key);
    fake(XCB_KEY_PRESS, key);
}

void InputDevice::releaseKey(xcb_keysym_t keysym) {
    const auto key = keyFor(keysym);
    heldKeys_.erase(key);
    fake(XCB_KEY_RELEASE, key);
}

void InputDevice::typeKey(xcb_keysym_t keysym) {
    pressKey(keysym);
    releaseKey(keysym);
}

void InputDevice::fake(std::uint8_t type, std::uint8_t detail, int x, int y) const {
    xcb_test_fake_input(server_.get(), type, detail, XCB_CURRENT_TIME, server_.root(),
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    server_.sync();
}

xcb_keycode_t InputDevice::keyFor(xcb_keysym_t keysym) const {
    const auto* setup = xcb_get_setup(server_.get());
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto request = xcb_get_keyboard_mapping(server_.get(), setup->min_keycode,
                                                  static_cast<std::uint8_t>(count));
    const Reply<xcb_get_keyboard_mapping_reply_t> reply(
        xcb_get_keyboard_mapping_reply(server_.get(), request, nullptr));
    const auto* symbols = reply ? xcb_get_keyboard_mapping_keysyms(reply.get()) : nullptr;
    for (int key = 0; symbols && key < count; ++key) {
        // The first symbol of a key is the one it gives without a modifier.
        if (*symbols == keysym) {
            return static_cast<xcb_keycode_t>(setup->min_keycode + key);
        }
        symbols += reply->keysyms_per_keycode;
    }
    throw std::runtime_error("no key of the keyboard gives the symbol " + std::to_string(keysym));
}

} // namespace lumetry::desktop
