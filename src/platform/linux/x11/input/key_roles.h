#pragma once

#include "platform/input.h"

#include <xcb/xproto.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace lumetry::x11 {

struct Unreference {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
/// A reference to an object of the keyboard library.
template<class Kind>
using Owned = std::unique_ptr<Kind, Unreference>;

/// What the keys of a keyboard are for. Until a keyboard has been read, what holds for
/// all of them or nearly so.
struct KeyRoles {
    /// The keys that the platform gives the code of Escape.
    std::vector<xcb_keycode_t> escape = {9};
    /// The keys that it gives the code of M. More than one where a layout has several.
    std::vector<xcb_keycode_t> m = {58};
    /// The keys that change modifiers when they are pressed, locks among them.
    std::bitset<256> modifierKeys;
    /// What each modifier bit of X11 stands for. The meaning of only two is fixed.
    std::array<ModifierFlags, 8> flags = {modifierShift, 0, modifierControl};
    /// The modifier bits that only locks set: Caps Lock, Num Lock and the like.
    std::uint16_t lockBits = XCB_MOD_MASK_LOCK;
};

/// @param group the active group of the layout, from 0
[[nodiscard]] KeyRoles readKeyRoles(xkb_keymap& keymap, xkb_layout_index_t group);

} // namespace lumetry::x11
