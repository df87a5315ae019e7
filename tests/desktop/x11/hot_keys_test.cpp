#include "rig/processes/child_process.h"
#include "x11_rig.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <atomic>
#include <chrono>
#include <memory>
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

/// Whether that client could take Control-Shift-M of a US keyboard for itself.
bool grab(xcb_connection_t* client, xcb_window_t root) {
    const auto request =
        xcb_grab_key_checked(client, 0, root, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT, keyUS,
                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return Reply<xcb_generic_error_t>(xcb_request_check(client, request)) == nullptr;
}

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
        auto process =
            desktop.start({"setxkbmap", "-layout", layouts, "-option", "", "-option", options});
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

TEST(X11HotKeys, FollowsTheLayoutAndItsActiveGroup) {
    HotKeyRig rig;
    rig.setLayout("fr");
    EXPECT_EQ(rig.tap(keyFrance), 1U);
    EXPECT_EQ(rig.tap(keyUS), 0U);
    // Caps Lock switches to the next group here.
    rig.setLayout("us,ru,de,fr", "grp:caps_toggle");
    for (int group = 0; group < 4; ++group) {
        EXPECT_EQ(rig.tap(keyUS), group < 3 ? 1U : 0U) << group;
        EXPECT_EQ(rig.tap(keyFrance), group < 3 ? 0U : 1U) << group;
        constexpr std::uint8_t keyCapsLock = 66;
        rig.fake(XCB_KEY_PRESS, keyCapsLock);
        rig.fake(XCB_KEY_RELEASE, keyCapsLock);
        rig.loop.settle();
    }
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
            grabbed += grab(connection.get(), connection.root()) ? 1 : 0;
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
    input.pressKey(XK_a);
    input.pressKey(XK_Control_L);
    input.pressKey(XK_Shift_L);
    rig.fake(XCB_KEY_PRESS, keyUS);
    // Another key may have been held longer.
    input.releaseKey(XK_a);
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

TEST(X11HotKeys, IsTakenOnceTheProgramThatHeldItLetsGoOfItOrEnds) {
    HotKeyRig rig;
    EXPECT_FALSE(grab(rig.xcb(), rig.desktop.server().root()));
    rig.registration.reset();
    static_cast<void>(rig.x11().pointer().location());
    auto other = std::make_unique<XConnection>(rig.desktop.display());
    ASSERT_TRUE(grab(other->get(), other->root()));
    int told = 0;
    rig.x11().onHotKeyTaken([&] { ++told; });
    rig.take(2);
    rig.loop.settle();
    EXPECT_EQ(rig.tap(keyUS), 0U);
    // Nothing is looked after again and again meanwhile.
    EXPECT_EQ(rig.loop.settle(std::chrono::milliseconds(300)), 0U);

    xcb_ungrab_key(other->get(), keyUS, other->root(), XCB_MOD_MASK_ANY);
    other->sync();
    const auto arrives = [&] { return rig.tap(keyUS) == 1; };
    EXPECT_TRUE(rig.loop.runUntil(arrives));
    EXPECT_FALSE(grab(other->get(), other->root()));

    rig.registration.reset();
    static_cast<void>(rig.x11().pointer().location());
    ASSERT_TRUE(grab(other->get(), other->root()));
    rig.take(3);
    EXPECT_EQ(rig.tap(keyUS), 0U);
    other.reset();
    EXPECT_TRUE(rig.loop.runUntil(arrives));
    EXPECT_EQ(told, 1);
    // From then on other programs' ends are nothing to it.
    static_cast<void>(XConnection(rig.desktop.display()));
    EXPECT_EQ(rig.loop.settle(), 0U);
    rig.closeX11();
    rig.registration.reset(); // tokens may outlive the desktop
}

} // namespace
} // namespace lumetry::desktop
