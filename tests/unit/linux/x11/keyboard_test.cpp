#include "platform/linux/x11/input/keyboard.h"

#include <gmock/gmock.h>

#include <bit>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace lumetry::x11 {
namespace {

/// A keyboard layout, and where keys are in a group of it (evdev's codes).
struct Layout {
    const char* layouts;
    const char* variants;
    xkb_layout_index_t group;
    std::vector<xcb_keycode_t> m;
    std::vector<xcb_keycode_t> option;
    std::string name;

    friend std::ostream& operator<<(std::ostream& out, const Layout& layout) {
        return out << layout.name;
    }
};

constexpr xcb_keycode_t escape = 9;
constexpr xcb_keycode_t capsLock = 66;
constexpr xcb_keycode_t leftAlt = 64;
constexpr xcb_keycode_t rightAlt = 108;

class KeyRolesOf : public testing::TestWithParam<Layout> {};

TEST_P(KeyRolesOf, FindTheKeysByTheirOwnSymbols) {
    const Layout& layout = GetParam();
    const xkb_rule_names names{"evdev", "pc105", layout.layouts, layout.variants, ""};
    const Owned<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const Owned<xkb_keymap> keymap(
        xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    ASSERT_TRUE(keymap);
    const KeyRoles roles = readKeyRoles(*keymap, layout.group);
    EXPECT_EQ(roles.m, layout.m);
    EXPECT_EQ(roles.escape, (std::vector{escape}));
    EXPECT_FALSE(roles.modifierKeys[escape]);
    // The locks have bits of their own, which make the shortcut none other.
    EXPECT_TRUE(roles.modifierKeys[capsLock]);
    EXPECT_EQ(roles.lockBits, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
    for (const xcb_keycode_t key : layout.option) {
        EXPECT_TRUE(roles.modifierKeys[key]);
        const Owned<xkb_state> state(xkb_state_new(keymap.get()));
        xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, layout.group);
        xkb_state_update_key(state.get(), key, XKB_KEY_DOWN);
        const auto bits = xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_EFFECTIVE) & 0xFF;
        ASSERT_TRUE(std::has_single_bit(bits));
        EXPECT_EQ(roles.flags.at(std::countr_zero(bits)), modifierOption) << int{key};
    }
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, KeyRolesOf,
    testing::Values(Layout{"us", "", 0, {58}, {leftAlt, rightAlt}, "us"},
                    Layout{"fr", "bepo", 0, {48}, {leftAlt, rightAlt}, "bepo"},
                    // ü says Escape on its fourth level. Caps Lock's key chooses third levels.
                    Layout{"de", "neo", 0, {58}, {leftAlt, capsLock}, "neo"},
                    // No Latin letter anywhere: where the US have M.
                    Layout{"ru", "", 0, {58}, {leftAlt, rightAlt}, "ru"},
                    Layout{"ru,us,fr", "", 0, {58}, {leftAlt}, "ruThenLatin"},
                    Layout{"us,ru,de,fr", "", 3, {47}, {leftAlt, rightAlt}, "fourth"}),
    testing::PrintToStringParamName());

} // namespace
} // namespace lumetry::x11
