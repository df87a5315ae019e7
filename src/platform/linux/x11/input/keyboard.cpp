#include "platform/linux/x11/input/keyboard.h"

#include <xcb/xcb.h>
// The header names a field after a keyword of C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-x11.h>

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

Keyboard::Keyboard(Connection& connection) : connection_(connection) {}

const KeyRoles& Keyboard::roles() {
    if (!opened_) {
        opened_ = true;
        open();
    }
    if (context_ && std::exchange(keymapIsOld_, false)) {
        readKeymap();
    }
    if (keymap_ && std::exchange(rolesAreOld_, false)) {
        roles_ = readKeyRoles(*keymap_, group_);
    }
    return roles_;
}

void Keyboard::open() {
    if (xkb_x11_setup_xkb_extension(connection_.get(), XKB_X11_MIN_MAJOR_XKB_VERSION,
                                    XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr,
                                    &extensionEvent_, nullptr) == 0) {
        return;
    }
    // Nothing is compiled from files, which is all that these leave out.
    context_.reset(xkb_context_new(static_cast<xkb_context_flags>(
        XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
    selectEvents();
}

void Keyboard::selectEvents() {
    auto* const c = connection_.get();
    events_ = connection_.onEvent([this](const auto& event) { handle(event); });
    // Changes come in swarms.
    batches_ = connection_.onEventsHandled([this] {
        if (std::exchange(changeUntold_, false)) {
            handlers_.call();
        }
    });
    constexpr std::uint16_t whole =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t maps = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                   XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_ACTIONS |
                                   XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events_details_t details{};
    details.affectState = details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(c, XCB_XKB_ID_USE_CORE_KBD, whole | XCB_XKB_EVENT_TYPE_STATE_NOTIFY,
                              0, whole, maps, maps, &details);
    const auto flags = xcb_xkb_per_client_flags(
        c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
        XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
    static_cast<void>(connection_.reply(xcb_xkb_per_client_flags_reply, flags));
}

void Keyboard::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != extensionEvent_) {
        return;
    }
    const auto& state = eventAs<xcb_xkb_state_notify_event_t>(event);
    if (state.xkbType != XCB_XKB_STATE_NOTIFY) {
        keymapIsOld_ = true;
    } else if (std::exchange(group_, state.group) == state.group) {
        return;
    }
    rolesAreOld_ = changeUntold_ = true;
}

void Keyboard::readKeymap() {
    auto* const c = connection_.get();
    const auto device = xkb_x11_get_core_keyboard_device_id(c);
    Owned<xkb_keymap> keymap(device < 0
                                 ? nullptr
                                 : xkb_x11_keymap_new_from_device(context_.get(), c, device,
                                                                  XKB_KEYMAP_COMPILE_NO_FLAGS));
    const Owned<xkb_state> state(keymap ? xkb_x11_state_new_from_device(keymap.get(), c, device)
                                        : nullptr);
    if (state) {
        group_ = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
        keymap_ = std::move(keymap);
    }
    // The library has waited for the server: events may have come meanwhile.
    connection_.flush();
}

ModifierFlags Keyboard::flags(std::uint16_t state) {
    const auto& meanings = roles().flags;
    ModifierFlags flags = 0;
    for (std::size_t bit = 0; bit < meanings.size(); ++bit) {
        flags |= (state & (1U << bit)) != 0 ? meanings.at(bit) : 0;
    }
    return flags;
}

bool Keyboard::isModifier(std::uint32_t key) {
    const auto& keys = roles().modifierKeys;
    return key < keys.size() && keys[key];
}

std::uint16_t Keyboard::keyCode(std::uint32_t key) {
    for (const std::uint16_t code : {keyCodeEscape, keyCodeM}) {
        const auto keys = keysOf(code);
        if (std::ranges::find(keys, key) != keys.end()) {
            return code;
        }
    }
    return keyCodeUnknown;
}

std::vector<xcb_keycode_t> Keyboard::keysOf(std::uint16_t keyCode) {
    switch (keyCode) {
    case keyCodeEscape:
        return roles().escape;
    case keyCodeM:
        return roles().m;
    default:
        return {};
    }
}

} // namespace lumetry::x11
