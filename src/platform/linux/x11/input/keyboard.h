#pragma once

#include "base/handler_list.h"
#include "platform/input.h"
#include "platform/linux/x11/connection/connection.h"

#include <xcb/xproto.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <bitset>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
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

/// Knows what the keys are for in the active group of the layout. It reads that with the first
/// question, and again after it has changed. From then on a key that is held down is pressed once.
class Keyboard {
public:
    explicit Keyboard(Connection& connection);
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;
    ~Keyboard() = default;

    /// Calls the handler whenever an answer below may have become another one.
    [[nodiscard]] Token onChange(std::function<void()> handler) {
        return handlers_.add(std::move(handler));
    }

    /// @param state modifier bits as the pointer and key events carry them
    [[nodiscard]] ModifierFlags flags(std::uint16_t state);
    [[nodiscard]] bool isModifier(std::uint32_t key);
    /// Escape's and M's; keyCodeUnknown for every other key. M is the key that says so without a
    /// modifier: in the active group, where it has such a key, else in any, else the one in its
    /// place on a US keyboard.
    [[nodiscard]] std::uint16_t keyCode(std::uint32_t key);
    /// The keys that the platform gives that code.
    [[nodiscard]] std::vector<xcb_keycode_t> keysOf(std::uint16_t keyCode);
    /// The modifier bits that are locks.
    [[nodiscard]] std::uint16_t lockBits() { return roles().lockBits; }

private:
    [[nodiscard]] const KeyRoles& roles();
    void open();
    void selectEvents();
    void handle(const xcb_generic_event_t& event);
    void readKeymap();

    Connection& connection_;
    HandlerList<> handlers_;
    bool opened_ = false;
    std::uint8_t extensionEvent_ = 0; ///< the one event of XKEYBOARD; 0 without the extension
    Owned<xkb_context> context_;
    Owned<xkb_keymap> keymap_;
    xkb_layout_index_t group_ = 0;
    bool keymapIsOld_ = true;
    bool rolesAreOld_ = true;
    bool changeUntold_ = false;
    KeyRoles roles_;
    Token events_;
    Token batches_;
};

} // namespace lumetry::x11
