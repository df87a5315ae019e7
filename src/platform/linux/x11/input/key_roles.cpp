#include "platform/linux/x11/input/key_roles.h"

#include <algorithm>
#include <initializer_list>

namespace lumetry::x11 {
namespace {

/// The bits of modifiers as X11 events carry them; a keymap has virtual ones beyond these.
constexpr xkb_mod_mask_t realModifiers = 0xFF;

/// A key in a group, pressed while nothing else is.
struct Press {
    xkb_mod_mask_t down = 0;  ///< the modifiers that it sets while it is held
    xkb_mod_mask_t stays = 0; ///< those of them that are locked afterwards
};

/// Keymaps may have further keys than X11 can tell of.
xkb_keycode_t lastKey(xkb_keymap& keymap) {
    constexpr xkb_keycode_t last = 255;
    return std::min(last, xkb_keymap_max_keycode(&keymap));
}

xkb_keysym_t symbolOf(xkb_keymap& keymap, xkb_keycode_t key, xkb_layout_index_t group,
                      xkb_level_index_t level = 0) {
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(&keymap, key, group, level, &symbols);
    return count == 1 ? *symbols : xkb_keysym_t{XKB_KEY_NoSymbol};
}

/// @param held modifiers that choose a level of the key
Press press(xkb_keymap& keymap, xkb_keycode_t key, xkb_layout_index_t group,
            xkb_mod_mask_t held = 0) {
    const Owned<xkb_state> state(xkb_state_new(&keymap));
    xkb_state_update_mask(state.get(), held, 0, 0, 0, 0, group);
    xkb_state_update_key(state.get(), key, XKB_KEY_DOWN);
    const auto down = xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_EFFECTIVE) & ~held;
    xkb_state_update_key(state.get(), key, XKB_KEY_UP);
    const auto stays = xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_LOCKED);
    return {down & realModifiers, stays & realModifiers};
}

/// The keys that carry one of the symbols and need no modifier for it.
std::vector<xcb_keycode_t> keysIn(xkb_keymap& keymap, xkb_layout_index_t group,
                                  std::initializer_list<xkb_keysym_t> wanted) {
    std::vector<xcb_keycode_t> keys;
    for (auto key = xkb_keymap_min_keycode(&keymap); key <= lastKey(keymap); ++key) {
        const xkb_keysym_t symbol = symbolOf(keymap, key, group);
        if (std::ranges::find(wanted, symbol) != wanted.end()) {
            keys.push_back(static_cast<xcb_keycode_t>(key));
        }
    }
    return keys;
}

/// Those of the group; where it has none, for it may be of another script, those of the first group
/// that has.
std::vector<xcb_keycode_t> keysWith(xkb_keymap& keymap, xkb_layout_index_t group,
                                    std::initializer_list<xkb_keysym_t> wanted) {
    auto keys = keysIn(keymap, group, wanted);
    for (xkb_layout_index_t other = 0; keys.empty() && other < xkb_keymap_num_layouts(&keymap);
         ++other) {
        keys = keysIn(keymap, other, wanted);
    }
    return keys;
}

/// What modifier a key is by one of its symbols; 0 when it is none. Where Alt stands on a shifted
/// level, the unshifted one is often Meta.
ModifierFlags flagOf(xkb_keymap& keymap, xkb_keycode_t key, xkb_layout_index_t group) {
    const auto levels = xkb_keymap_num_levels_for_key(&keymap, key, group);
    for (xkb_level_index_t level = 0; level < levels; ++level) {
        switch (symbolOf(keymap, key, group, level)) {
        case XKB_KEY_Alt_L:
        case XKB_KEY_Alt_R:
        case XKB_KEY_ISO_Level3_Shift: // AltGr stands where other keyboards have a second Alt
            return modifierOption;
        case XKB_KEY_Super_L:
        case XKB_KEY_Super_R:
            return modifierCommand;
        default:
            break;
        }
    }
    return 0;
}

/// The modifiers that the key locks on any of its levels.
xkb_mod_mask_t locksOf(xkb_keymap& keymap, xkb_keycode_t key, xkb_layout_index_t group) {
    xkb_mod_mask_t locks = 0;
    const auto levels = xkb_keymap_num_levels_for_key(&keymap, key, group);
    for (xkb_level_index_t level = 0; level < levels; ++level) {
        xkb_mod_mask_t held = 0;
        if (xkb_keymap_key_get_mods_for_level(&keymap, key, group, level, &held, 1) != 0) {
            locks |= press(keymap, key, group, held).stays;
        }
    }
    return locks;
}

void readModifiers(xkb_keymap& keymap, xkb_keycode_t key, xkb_layout_index_t group,
                   KeyRoles& roles) {
    const auto down = press(keymap, key, group).down;
    const ModifierFlags flag = down == 0 ? 0 : flagOf(keymap, key, group);
    // The first three bits are Shift, Lock and Control by definition.
    for (std::size_t bit = 3; bit < roles.flags.size(); ++bit) {
        if ((down & (1U << bit)) != 0) {
            roles.flags.at(bit) |= flag;
        }
    }
    roles.lockBits = static_cast<std::uint16_t>(roles.lockBits | locksOf(keymap, key, group));
}

/// A modifier with a meaning of its own stays one where it can be locked, too.
void keepMeanings(KeyRoles& roles) {
    for (std::size_t bit = 0; bit < roles.flags.size(); ++bit) {
        if (roles.flags.at(bit) != 0) {
            roles.lockBits = static_cast<std::uint16_t>(roles.lockBits & ~(1U << bit));
        }
    }
}

} // namespace

KeyRoles readKeyRoles(xkb_keymap& keymap, xkb_layout_index_t group) {
    KeyRoles roles;
    roles.escape = keysWith(keymap, group, {XKB_KEY_Escape});
    roles.m = keysWith(keymap, group, {XKB_KEY_m, XKB_KEY_M});
    if (roles.m.empty()) {
        // Where keyboards of the US have it.
        const auto place = xkb_keymap_key_by_name(&keymap, "AB07");
        if (place != XKB_KEYCODE_INVALID) {
            roles.m.push_back(static_cast<xcb_keycode_t>(place));
        }
    }
    for (auto key = xkb_keymap_min_keycode(&keymap); key <= lastKey(keymap); ++key) {
        roles.modifierKeys[key] = press(keymap, key, group).down != 0;
        // A bit means the same in all groups, and may be set by a key of any.
        const auto groups = xkb_keymap_num_layouts_for_key(&keymap, key);
        for (xkb_layout_index_t any = 0; any < groups; ++any) {
            readModifiers(keymap, key, any, roles);
        }
    }
    keepMeanings(roles);
    return roles;
}

} // namespace lumetry::x11
