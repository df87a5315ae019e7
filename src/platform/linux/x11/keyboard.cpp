#include "platform/linux/x11/keyboard.h"

#include <xcb/xcb.h>

#include <algorithm>

namespace lumetry::x11 {

Keyboard::Keyboard(Connection& connection)
    : connection_(connection), events_(connection.onEvent([this](const xcb_generic_event_t& event) {
          dirty_ = dirty_ || typeOf(event) == XCB_MAPPING_NOTIFY;
      })) {}

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
