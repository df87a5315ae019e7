#include "x11_rig.h"

#include <X11/keysym.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace lumetry::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr EventMask everything = 0xFFFFFFFF;
struct InputRig : X11Rig {
    InputRig() {
        // Over no window, and away from where the tests go.
        desktop.input().movePointer(790, 590);
    }
    void watch(EventMask mask = everything) {
        token = x11().eventMonitors().addGlobalMonitorForEvents(
            mask, [this](const Event& event) { events.push_back(event); });
        awaitServer();
        loop.settle();
        events.clear();
    }
    /// Returns once the server has carried out what the backend has asked of it.
    void awaitServer() { static_cast<void>(x11().pointer().location()); }
    std::vector<Event> take() {
        loop.settle();
        return std::exchange(events, {});
    }

    std::vector<Event> events;
    Token token;
};

const Event moved = {EventType::mouseMoved};
const Event scrolled = {EventType::scrollWheel};
const Event flagsChanged = {EventType::flagsChanged};
const Event otherKey = {EventType::keyDown};

TEST(X11EventMonitors, TellWhatIsDone) {
    InputRig rig;
    rig.watch();
    auto& input = rig.desktop.input();
    input.movePointer(100, 100);
    EXPECT_THAT(rig.take(), ElementsAre(moved));
    input.click(MouseButton::wheelDown);
    EXPECT_THAT(rig.take(), ElementsAre(scrolled));
    input.click(MouseButton::left);
    EXPECT_THAT(rig.take(), IsEmpty());
    input.typeKey(XK_Escape);
    EXPECT_THAT(rig.take(), ElementsAre(Event{EventType::keyDown, keyCodeEscape}));
    input.pressKey(XK_Shift_L);
    input.typeKey(XK_m);
    input.releaseKey(XK_Shift_L);
    EXPECT_THAT(rig.take(),
                ElementsAre(flagsChanged, Event{EventType::keyDown, keyCodeM}, flagsChanged));
    // Many movements at once are told once.
    for (int x = 0; x < 50; ++x) {
        input.movePointer(200 + x, 200);
    }
    EXPECT_LT(rig.take().size(), 10U);
    rig.closeX11();
    rig.token.reset(); // tokens may outlive the desktop
}

TEST(X11EventMonitors, HearOnlyWhatTheyAskForWhileTheyLast) {
    InputRig rig;
    rig.watch(eventMask(EventType::keyDown));
    auto& input = rig.desktop.input();
    input.movePointer(100, 100);
    input.typeKey(XK_Tab);
    EXPECT_THAT(rig.take(), ElementsAre(otherKey));
    rig.token.reset();
    rig.awaitServer();
    input.typeKey(XK_Tab);
    input.movePointer(110, 100);
    EXPECT_EQ(rig.loop.settle(), 0U) << "woken up for nobody";
    EXPECT_THAT(rig.take(), IsEmpty());
}

TEST(X11EventMonitors, HearDuringAnotherProgramsGrab) {
    InputRig rig;
    rig.watch();
    const auto window = rig.ownWindow({700, 0, 10, 10});
    rig.map(window);
    const auto pointer = xcb_grab_pointer(rig.xcb(), 0, window, XCB_EVENT_MASK_BUTTON_PRESS,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, 0, 0, 0);
    const auto keyboard =
        xcb_grab_keyboard(rig.xcb(), 0, window, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const Reply<xcb_grab_pointer_reply_t> pointerGrab(
        xcb_grab_pointer_reply(rig.xcb(), pointer, nullptr));
    const Reply<xcb_grab_keyboard_reply_t> keyboardGrab(
        xcb_grab_keyboard_reply(rig.xcb(), keyboard, nullptr));
    ASSERT_EQ(pointerGrab->status, XCB_GRAB_STATUS_SUCCESS);
    ASSERT_EQ(keyboardGrab->status, XCB_GRAB_STATUS_SUCCESS);
    rig.take();
    rig.desktop.input().movePointer(50, 60);
    EXPECT_THAT(rig.take(), ElementsAre(moved));
    rig.desktop.input().typeKey(XK_Escape);
    EXPECT_THAT(rig.take(), ElementsAre(Event{EventType::keyDown, keyCodeEscape}));
}

TEST(X11EventMonitors, DoNotHearWhatIsMeantForThisProgram) {
    InputRig rig;
    const auto own = rig.ownWindow({0, 0, 200, 200});
    const auto foreign = rig.foreignWindow({300, 0, 200, 200});
    rig.map(own);
    rig.map(foreign);
    rig.watch();
    auto& input = rig.desktop.input();
    input.movePointer(100, 100);
    input.click(MouseButton::wheelUp);
    EXPECT_THAT(rig.take(), IsEmpty());
    input.movePointer(400, 100);
    EXPECT_THAT(rig.take(), ElementsAre(moved));

    const auto focus = [&](xcb_window_t window) {
        xcb_set_input_focus(rig.xcb(), XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
        rig.desktop.server().sync();
    };
    focus(own);
    input.typeKey(XK_Escape);
    input.typeKey(XK_Shift_L);
    EXPECT_THAT(rig.take(), IsEmpty());
    focus(foreign);
    input.typeKey(XK_Escape);
    EXPECT_THAT(rig.take(), ElementsAre(Event{EventType::keyDown, keyCodeEscape}));
    // A click-through window of this program takes nothing.
    rig.emptyInputShape(own);
    input.movePointer(100, 100);
    EXPECT_THAT(rig.take(), ElementsAre(moved));
}

TEST(X11Pointer, TellsPlaceAndModifiers) {
    InputRig rig;
    auto& input = rig.desktop.input();
    auto& pointer = rig.x11().pointer();
    input.movePointer(123, 45);
    EXPECT_EQ(pointer.location(), (Point{123, 555}));
    const std::vector<std::pair<xcb_keysym_t, ModifierFlags>> modifiers = {
        {XK_Shift_L, modifierShift}, {XK_Control_R, modifierControl}, {XK_Alt_L, modifierOption},
        {XK_Alt_R, modifierOption},  {XK_Super_L, modifierCommand},   {XK_Caps_Lock, 0},
    };
    for (const auto& [keysym, flag] : modifiers) {
        input.pressKey(keysym);
        static_cast<void>(pointer.location());
        EXPECT_EQ(pointer.modifierFlags(), flag) << keysym;
        input.releaseKey(keysym);
        EXPECT_EQ(pointer.modifierFlags() & flag, 0U) << keysym;
    }
}

TEST(X11Pointer, FollowsTheModifierMap) {
    InputRig rig;
    static_cast<void>(rig.x11().pointer().modifierFlags());
    // Alt goes from Mod1 to Mod4, and what stands there to Mod1.
    const Reply<xcb_get_modifier_mapping_reply_t> old(
        xcb_get_modifier_mapping_reply(rig.xcb(), xcb_get_modifier_mapping(rig.xcb()), nullptr));
    const std::size_t width = old->keycodes_per_modifier;
    const auto* const keys = xcb_get_modifier_mapping_keycodes(old.get());
    std::vector<xcb_keycode_t> map(keys, keys + 8 * width);
    std::swap_ranges(map.begin() + 3 * static_cast<std::ptrdiff_t>(width),
                     map.begin() + 4 * static_cast<std::ptrdiff_t>(width),
                     map.begin() + 6 * static_cast<std::ptrdiff_t>(width));
    const Reply<xcb_set_modifier_mapping_reply_t> done(xcb_set_modifier_mapping_reply(
        rig.xcb(),
        xcb_set_modifier_mapping(rig.xcb(), static_cast<std::uint8_t>(width), map.data()),
        nullptr));
    ASSERT_EQ(done->status, XCB_MAPPING_STATUS_SUCCESS);
    rig.loop.settle();
    rig.desktop.input().pressKey(XK_Alt_L);
    EXPECT_EQ(rig.x11().pointer().modifierFlags(), modifierOption);
}

} // namespace
} // namespace lumetry::desktop
