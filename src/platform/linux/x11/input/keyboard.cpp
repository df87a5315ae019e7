#include "platform/linux/x11/input/keyboard.h"

#include <xcb/xcb.h>
// The header names a field after a keyword of C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>

namespace lumetry::x11 {

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
