#include "platform/linux/x11/input/hot_keys.h"

#include <algorithm>
#include <utility>

namespace lumetry::x11 {
namespace {

/// The modifier bits that a key event carries, without buttons and groups.
constexpr std::uint16_t modifierBits = 0xFF;

/// Milliseconds that a key may be held before the server repeats it, at the slowest setting.
constexpr xcb_timestamp_t longestRepeatDelay = 3000;

std::uint16_t nativeModifiers(std::uint32_t modifiers) {
    std::uint16_t native = 0;
    if ((modifiers & hotKeyShift) != 0) {
        native |= XCB_MOD_MASK_SHIFT;
    }
    if ((modifiers & hotKeyControl) != 0) {
        native |= XCB_MOD_MASK_CONTROL;
    }
    return native;
}

/// Every combination of the bits, none of them included.
std::vector<std::uint16_t> subsetsOf(std::uint16_t bits) {
    std::vector<std::uint16_t> subsets;
    std::uint16_t subset = 0;
    do {
        subsets.push_back(subset);
        subset = static_cast<std::uint16_t>((subset - bits) & bits);
    } while (subset != 0);
    return subsets;
}

} // namespace

X11HotKeys::X11HotKeys(Connection& connection, Keyboard& keyboard)
    : connection_(connection), keyboard_(keyboard) {}

Token X11HotKeys::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, HotKeyID id) {
    if (connection_.isLost()) {
        return {};
    }
    if (!events_) {
        events_ = connection_.onEvent([this](const auto& event) { handle(event); });
        keyboardChange_ = keyboard_.onChange([this] { grabAnew(); });
    }
    HotKey hotKey{
        ++lastNumber_, static_cast<std::uint16_t>(keyCode), nativeModifiers(modifiers), id, {}};
    grab(hotKey);
    const int number = hotKey.number;
    hotKeys_.push_back(std::move(hotKey));
    awaitOthers();
    return Token(lifetime_.guard([this, number] { unregister(number); }));
}

void X11HotKeys::unregister(int number) {
    const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
    for (const Combination& combination : found->grabbed) {
        ungrab(combination);
    }
    connection_.flush();
    hotKeys_.erase(found);
    awaitOthers();
}

void X11HotKeys::grab(HotKey& hotKey) {
    const auto wanted = combinationsOf(hotKey);
    const auto had = std::exchange(hotKey.grabbed, {});
    std::vector<std::pair<Combination, xcb_void_cookie_t>> requests;
    for (const Combination& combination : wanted) {
        if (std::ranges::find(had, combination) != had.end()) {
            hotKey.grabbed.push_back(combination);
        } else {
            requests.emplace_back(combination,
                                  xcb_grab_key_checked(connection_.get(), 0, connection_.root(),
                                                       combination.modifiers, combination.key,
                                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        }
    }
    for (const auto& [combination, request] : requests) {
        if (!connection_.failed(request)) {
            hotKey.grabbed.push_back(combination);
        }
    }
    for (const Combination& combination : had) {
        if (std::ranges::find(wanted, combination) == wanted.end()) {
            ungrab(combination);
        }
    }
    connection_.flush();
    hotKey.isWhole = hotKey.grabbed.size() == wanted.size();
}

std::vector<X11HotKeys::Combination> X11HotKeys::combinationsOf(const HotKey& hotKey) {
    std::vector<Combination> combinations;
    for (const xcb_keycode_t key : keyboard_.keysOf(hotKey.keyCode)) {
        for (const std::uint16_t locks : subsetsOf(keyboard_.lockBits())) {
            combinations.push_back({key, static_cast<std::uint16_t>(hotKey.modifiers | locks)});
        }
    }
    return combinations;
}

void X11HotKeys::ungrab(const Combination& combination) {
    xcb_ungrab_key(connection_.get(), combination.key, connection_.root(), combination.modifiers);
}

void X11HotKeys::grabAnew() {
    // The server tells of a change whenever another keyboard is typed on, with the first key of a
    // shortcut, that is: what stays the same must not be let go even for a moment.
    for (HotKey& hotKey : hotKeys_) {
        grab(hotKey);
    }
    awaitOthers();
}

void X11HotKeys::awaitOthers() {
    if (std::ranges::all_of(hotKeys_, &HotKey::isWhole)) {
        freedGrabs_.reset();
        return;
    }
    if (!freedGrabs_) {
        freedGrabs_.emplace(connection_, [this] { grabAnew(); });
    }
    if (const auto tell = std::exchange(onTaken_, nullptr)) {
        tell();
    }
}

void X11HotKeys::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) == XCB_KEY_PRESS) {
        press(eventAs<xcb_key_press_event_t>(event));
    } else if (typeOf(event) == XCB_KEY_RELEASE && heldKey_ &&
               eventAs<xcb_key_release_event_t>(event).detail == heldKey_->key) {
        heldKey_.reset();
    }
}

void X11HotKeys::press(const xcb_key_press_event_t& event) {
    // A key that is held down is pressed again and again. That it was let go of may never be told,
    // as when its keyboard is unplugged.
    if (heldKey_ && heldKey_->key == event.detail &&
        event.time - std::exchange(heldKey_->lastPressed, event.time) < longestRepeatDelay) {
        return;
    }
    const auto modifiers =
        static_cast<std::uint16_t>(event.state & modifierBits & ~keyboard_.lockBits());
    const auto found = std::ranges::find_if(hotKeys_, [&](const HotKey& hotKey) {
        return hotKey.modifiers == modifiers &&
               std::ranges::find(hotKey.grabbed, event.detail, &Combination::key) !=
                   hotKey.grabbed.end();
    });
    if (found != hotKeys_.end()) {
        heldKey_ = HeldKey{event.detail, event.time};
        const HotKeyEvent pressed{found->id};
        // The newest that takes it keeps it from the others.
        handlers_.callUntil(noErr, &pressed);
    }
}

} // namespace lumetry::x11
