#include "support/processes/child_process.h"
#include "x11_rig.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr std::uint32_t modifiers = hotKeyControl | hotKeyShift;
/// Where keyboards have the keys that say M in the US and in France (evdev's codes).
constexpr std::uint8_t keyUS = 58;
constexpr std::uint8_t keyFrance = 47;

struct HotKeyRig : X11Rig {
    HotKeyRig() {
        handler = x11().hotKeys().installEventHandler([this](const HotKeyEvent* event) {
            pressed.push_back(event->directObject.id);
            return noErr;
        });
        take(1);
    }
    void take(std::uint32_t id) {
        registration.reset();
        registration = x11().hotKeys().registerEventHotKey(keyCodeM, modifiers, {0, id});
    }
    void fake(std::uint8_t type, std::uint8_t key) {
        xcb_test_fake_input(xcb(), type, key, XCB_CURRENT_TIME, desktop.server().root(), 0, 0, 0);
        desktop.server().sync();
    }
    /// How many presses of the hot key a press of that key with Control and Shift makes.
    std::size_t tap(std::uint8_t key) {
        auto& input = desktop.input();
        input.pressKey(XK_Control_L);
        input.pressKey(XK_Shift_L);
        fake(XCB_KEY_PRESS, key);
        fake(XCB_KEY_RELEASE, key);
        input.releaseKey(XK_Shift_L);
        input.releaseKey(XK_Control_L);
        loop.settle();
        return std::exchange(pressed, {}).size();
    }
    /// Has the server use other layouts, and waits until the backend knows.
    void setLayout(const std::string& layouts, const std::string& options = "") {
        std::vector<std::string> command = {"setxkbmap", "-layout", layouts, "-option", ""};
        if (!options.empty()) {
            command.insert(command.end(), {"-option", options});
        }
        auto process = desktop.start(command);
        const auto status = process.wait();
        ASSERT_TRUE(status && status->code == 0) << process.standardError();
        loop.settle();
        static_cast<void>(x11().pointer().location());
        loop.settle();
    }

    std::vector<std::uint32_t> pressed;
    Token handler;
    Token registration;
};

TEST(X11HotKeys, IsPressedWhateverTheLocksAre) {
    HotKeyRig rig;
    ASSERT_TRUE(rig.registration);
    EXPECT_EQ(rig.tap(keyUS), 1U);
    for (const xcb_keysym_t lock : {XK_Caps_Lock, XK_Num_Lock}) {
        rig.desktop.input().typeKey(lock); // on, and the second one with the first
        EXPECT_EQ(rig.tap(keyUS), 1U) << lock;
    }
    EXPECT_EQ(rig.tap(keyFrance), 0U);
    // Not with another modifier, and not with one less.
    rig.desktop.input().pressKey(XK_Alt_L);
    EXPECT_EQ(rig.tap(keyUS), 0U);
    rig.desktop.input().releaseKey(XK_Alt_L);
    rig.fake(XCB_KEY_PRESS, keyUS);
    rig.fake(XCB_KEY_RELEASE, keyUS);
    rig.loop.settle();
    EXPECT_TRUE(rig.pressed.empty());
}

TEST(X11HotKeys, FollowsTheSymbolOnEveryLayout) {
    HotKeyRig rig;
    rig.setLayout("fr");
    EXPECT_EQ(rig.tap(keyFrance), 1U);
    EXPECT_EQ(rig.tap(keyUS), 0U);
    // No Latin letter anywhere: the place of the key on a US keyboard.
    rig.setLayout("ru");
    EXPECT_EQ(rig.tap(keyUS), 1U);
    // In the group that is active: Caps Lock switches to the next one here.
    rig.setLayout("us,fr", "grp:caps_toggle");
    EXPECT_EQ(rig.tap(keyUS), 1U);
    constexpr std::uint8_t keyCapsLock = 66;
    rig.fake(XCB_KEY_PRESS, keyCapsLock);
    rig.fake(XCB_KEY_RELEASE, keyCapsLock);
    rig.loop.settle();
    EXPECT_EQ(rig.tap(keyFrance), 1U);
    EXPECT_EQ(rig.tap(keyUS), 0U);
}

TEST(X11HotKeys, IsNeverLetGoWhileTheKeyboardStaysTheSame) {
    HotKeyRig rig;
    // The server tells of a change, too, when another keyboard with the same symbols is used.
    const auto tellOfAChange = [&] {
        const auto request = xcb_get_keyboard_mapping(rig.xcb(), keyUS, 1);
        const Reply<xcb_get_keyboard_mapping_reply_t> same(
            xcb_get_keyboard_mapping_reply(rig.xcb(), request, nullptr));
        ASSERT_TRUE(same);
        xcb_change_keyboard_mapping(rig.xcb(), 1, keyUS, same->keysyms_per_keycode,
                                    xcb_get_keyboard_mapping_keysyms(same.get()));
        rig.desktop.server().sync();
    };
    std::atomic<int> grabbed = 0;
    const std::jthread other([&](const std::stop_token& stop) {
        const XConnection connection(rig.desktop.display());
        while (!stop.stop_requested()) {
            const auto request = xcb_grab_key_checked(
                connection.get(), 0, connection.root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT,
                keyUS, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
            const Reply<xcb_generic_error_t> error(xcb_request_check(connection.get(), request));
            grabbed += error == nullptr ? 1 : 0;
        }
    });
    constexpr int changes = 50;
    for (int i = 0; i < changes; ++i) {
        tellOfAChange();
        rig.loop.settle();
    }
    EXPECT_EQ(grabbed, 0);
    EXPECT_EQ(rig.tap(keyUS), 1U);
}

TEST(X11HotKeys, IsPressedOnceHoweverLongItIsHeld) {
    HotKeyRig rig;
    auto& input = rig.desktop.input();
    input.pressKey(XK_Control_L);
    input.pressKey(XK_Shift_L);
    rig.fake(XCB_KEY_PRESS, keyUS);
    // The server repeats keys after two thirds of a second, 25 times a second.
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
    while (std::chrono::steady_clock::now() < end) {
        rig.loop.turn(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(rig.pressed.size(), 1U);
    rig.fake(XCB_KEY_RELEASE, keyUS);
    input.releaseKey(XK_Shift_L);
    input.releaseKey(XK_Control_L);
    rig.pressed.clear();
    EXPECT_EQ(rig.tap(keyUS), 1U);
}

TEST(X11HotKeys, IsRefusedWhileAnotherProgramHoldsItAndFreeAfterwards) {
    HotKeyRig rig;
    const auto grabFails = [&] {
        const auto request = xcb_grab_key_checked(rig.xcb(), 0, rig.desktop.server().root(),
                                                  XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT, keyUS,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const Reply<xcb_generic_error_t> error(xcb_request_check(rig.xcb(), request));
        return error != nullptr;
    };
    EXPECT_TRUE(grabFails());
    rig.registration.reset();
    static_cast<void>(rig.x11().pointer().location());
    EXPECT_FALSE(grabFails());
    EXPECT_EQ(rig.tap(keyUS), 0U);
    rig.take(2);
    // With a lock on it can still be had.
    xcb_ungrab_key(rig.xcb(), keyUS, rig.desktop.server().root(), XCB_MOD_MASK_ANY);
    rig.desktop.server().sync();
    rig.take(3);
    EXPECT_TRUE(rig.registration);
    EXPECT_EQ(rig.tap(keyUS), 1U);
}

TEST(X11HotKeys, HandlersAreAskedLatestFirstUntilOneHasIt) {
    HotKeyRig rig;
    std::vector<int> asked;
    const auto early = rig.x11().hotKeys().installEventHandler([&](const HotKeyEvent*) {
        asked.push_back(1);
        return noErr;
    });
    auto late = rig.x11().hotKeys().installEventHandler([&](const HotKeyEvent*) {
        asked.push_back(2);
        return eventNotHandledErr;
    });
    EXPECT_EQ(rig.tap(keyUS), 0U);
    EXPECT_EQ(asked, (std::vector{2, 1}));
    late.reset();
    rig.tap(keyUS);
    EXPECT_EQ(asked, (std::vector{2, 1, 1}));
    rig.closeX11();
    rig.registration.reset(); // tokens may outlive the desktop
}

} // namespace
} // namespace lumetry::desktop
