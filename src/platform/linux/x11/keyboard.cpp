#include "platform/linux/x11/keyboard.h"

#include <xcb/xcb.h>
// The header names a field after a keyword of C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <algorithm>

namespace lumetry::x11 {

Keyboard::Keyboard(Connection& connection)
    : connection_(connection),
      events_(connection.onEvent([this](const auto& event) { handle(event); })) {}

void Keyboard::watch() {
    auto* const c = connection_.get();
    const auto* const extension = xcb_get_extension_data(c, &xcb_xkb_id);
    if (extensionEvent_ != 0 || extension == nullptr || extension->present == 0) {
        return;
    }
    const auto used =
        connection_.reply(xcb_xkb_use_extension_reply,
                          xcb_xkb_use_extension(c, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION));
    if (!used || used->supported == 0) {
        return;
    }
    extensionEvent_ = extension->first_event;
    // Who uses the extension is told of other keys by it alone.
    constexpr std::uint16_t whole =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t maps =
        XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events_details_t details{};
    details.affectState = details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(c, XCB_XKB_ID_USE_CORE_KBD, whole | XCB_XKB_EVENT_TYPE_STATE_NOTIFY,
                              0, whole, maps, maps, &details);
    const auto flags = xcb_xkb_per_client_flags(
        c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
        XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
    const auto stateRequest = xcb_xkb_get_state(c, XCB_XKB_ID_USE_CORE_KBD);
    static_cast<void>(connection_.reply(xcb_xkb_per_client_flags_reply, flags));
    const auto state = connection_.reply(xcb_xkb_get_state_reply, stateRequest);
    group_ = state ? state->group : 0;
    dirty_ = true;
}

void Keyboard::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) == XCB_MAPPING_NOTIFY) {
        changed(true);
    } else if (extensionEvent_ != 0 && typeOf(event) == extensionEvent_) {
        const auto& state = eventAs<xcb_xkb_state_notify_event_t>(event);
        if (state.xkbType != XCB_XKB_STATE_NOTIFY) {
            changed(true);
        } else if (state.group != group_) {
            group_ = state.group;
            changed(false);
        }
    }
}

void Keyboard::changed(bool symbols) {
    dirty_ = dirty_ || symbols;
    handlers_.call();
}

void Keyboard::refresh() {
    if (dirty_) {
        dirty_ = false;
        readSymbols();
        readModifiers();
    }
}

void Keyboard::readSymbols() {
    const auto* const setup = xcb_get_setup(connection_.get());
    firstKey_ = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto mapping =
        connection_.reply(xcb_get_keyboard_mapping_reply,
                          xcb_get_keyboard_mapping(connection_.get(), setup->min_keycode, count));
    symbols_.clear();
    symbolsPerKey_ = 0;
    if (mapping) {
        const auto* const first = xcb_get_keyboard_mapping_keysyms(mapping.get());
        symbolsPerKey_ = mapping->keysyms_per_keycode;
        symbols_.assign(first, first + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
    }
}

void Keyboard::readModifiers() {
    modifiers_ = {modifierShift, 0, modifierControl};
    lockBits_ = XCB_MOD_MASK_LOCK;
    const auto mapping = connection_.reply(xcb_get_modifier_mapping_reply,
                                           xcb_get_modifier_mapping(connection_.get()));
    if (!mapping) {
        return;
    }
    const auto* const keys = xcb_get_modifier_mapping_keycodes(mapping.get());
    const std::size_t keysPerModifier = mapping->keycodes_per_modifier;
    // The first three bits are Shift, Lock and Control by definition.
    for (std::size_t bit = 3; bit < modifierCount; ++bit) {
        for (std::size_t i = 0; i < keysPerModifier; ++i) {
            for (const Keysym symbol : symbolsOf(keys[bit * keysPerModifier + i])) {
                modifiers_[bit] |= modifierOf(symbol);
                if (isLockKey(symbol)) {
                    lockBits_ = static_cast<std::uint16_t>(lockBits_ | (1U << bit));
                }
            }
        }
    }
}

std::vector<Keysym> Keyboard::symbolsOf(std::uint32_t key) const {
    const std::size_t first = (key - firstKey_) * symbolsPerKey_;
    if (key < firstKey_ || first + symbolsPerKey_ > symbols_.size()) {
        return {};
    }
    const auto begin = symbols_.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + static_cast<std::ptrdiff_t>(symbolsPerKey_)};
}

ModifierFlags Keyboard::flags(std::uint16_t state) {
    refresh();
    ModifierFlags flags = 0;
    for (std::size_t bit = 0; bit < modifierCount; ++bit) {
        if ((state & (1U << bit)) != 0) {
            flags |= modifiers_[bit];
        }
    }
    return flags;
}

bool Keyboard::isModifier(std::uint32_t key) {
    refresh();
    const auto symbols = symbolsOf(key);
    return !symbols.empty() && isModifierKey(symbols.front());
}

std::uint16_t Keyboard::keyCode(std::uint32_t key) {
    refresh();
    // On a layout of another script the Latin letter stands in one of the later columns.
    for (const Keysym symbol : symbolsOf(key)) {
        if (const auto code = keyCodeOf(symbol)) {
            return *code;
        }
    }
    return keyCodeUnknown;
}

std::vector<std::uint8_t> Keyboard::keysOf(std::uint16_t keyCode, std::uint8_t group) {
    refresh();
    std::vector<std::uint8_t> inGroup;
    std::vector<std::uint8_t> inAny;
    const std::size_t keyCount = symbolsPerKey_ == 0 ? 0 : symbols_.size() / symbolsPerKey_;
    for (std::size_t i = 0; i < keyCount; ++i) {
        const auto key = static_cast<std::uint8_t>(firstKey_ + i);
        const auto symbols = symbolsOf(key);
        for (std::size_t column = 0; column < symbols.size(); ++column) {
            if (keyCodeOf(symbols[column]) != keyCode) {
                continue;
            }
            // The first four columns are two of the first group and two of the second.
            auto& found = column / 2 == group ? inGroup : inAny;
            if (found.empty() || found.back() != key) {
                found.push_back(key);
            }
        }
    }
    if (!inGroup.empty()) {
        return inGroup;
    }
    if (inAny.empty() && keyCode == keyCodeM) {
        constexpr std::uint8_t keyOfM = 58; // of evdev, which all X servers on Linux use
        return {keyOfM};
    }
    return inAny;
}

std::uint16_t Keyboard::lockBits() {
    refresh();
    return lockBits_;
}

} // namespace lumetry::x11
